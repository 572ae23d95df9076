#include "InputOutput/Location.hpp"

#include <gtest/gtest.h>

namespace
{

TEST(Location, IsEmptyWhenDefaultConstructed) { EXPECT_TRUE(IO::Location().IsEmpty()); }

} // namespace
