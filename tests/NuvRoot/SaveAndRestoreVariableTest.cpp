#include "NuvRoot/SaveAndRestoreVariable.hpp"

#include "NuvRoot/UniString.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{

using Nuv::SaveAndRestoreVariable;

TEST(SaveAndRestoreVariable, PutsTheOldValueBack)
{
    int variable = 1;
    {
        const SaveAndRestoreVariable restore(variable);
        EXPECT_EQ(variable, 1);
        variable = 2;
    }
    EXPECT_EQ(variable, 1);
}

TEST(SaveAndRestoreVariable, SetsANewValueForTheScope)
{
    Nuv::UniString variable(u"old");
    {
        const SaveAndRestoreVariable restore(variable, Nuv::UniString(u"new"));
        EXPECT_EQ(variable, u"new");
    }
    EXPECT_EQ(variable, u"old");
}

TEST(SaveAndRestoreVariable, PutsTheOldValueBackWhenAnExceptionLeavesTheScope)
{
    bool variable = false;
    try
    {
        const SaveAndRestoreVariable restore(variable, true);
        throw std::runtime_error("leaves the scope");
    }
    catch (const std::runtime_error&)
    {
        EXPECT_FALSE(variable);
    }
}

TEST(SaveAndRestoreVariable, Nests)
{
    int variable = 1;
    {
        const SaveAndRestoreVariable outer(variable, 2);
        {
            const SaveAndRestoreVariable inner(variable, 3);
            EXPECT_EQ(variable, 3);
        }
        EXPECT_EQ(variable, 2);
    }
    EXPECT_EQ(variable, 1);
}

} // namespace
