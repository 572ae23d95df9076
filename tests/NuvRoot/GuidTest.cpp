#include "NuvRoot/Guid.hpp"

#include <gtest/gtest.h>

namespace
{

TEST(Guid, IsNullWhenDefaultConstructed) { EXPECT_TRUE(Nuv::Guid().IsNull()); }

} // namespace
