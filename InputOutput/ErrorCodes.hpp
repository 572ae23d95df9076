/// @file
/// The error codes of the file library; 0 is success.
#pragma once

namespace IO
{

inline constexpr int NoError = 0;
inline constexpr int EndOfFile = static_cast<int>(0x81000100u);
inline constexpr int NotFound = static_cast<int>(0x81010303u);
inline constexpr int AccessDenied = static_cast<int>(0x81010304u);
inline constexpr int IsAFolder = static_cast<int>(0x81010305u);
inline constexpr int NoSpace = static_cast<int>(0x81010306u);
inline constexpr int NotOpen = static_cast<int>(0x81010307u);
inline constexpr int OtherError = static_cast<int>(0x810103FFu);

} // namespace IO
