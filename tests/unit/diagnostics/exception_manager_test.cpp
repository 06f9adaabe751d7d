#include "exception_manager.h"

#include <exception>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using exception_manager::Exception;
using exception_manager::fillPlaceholders;

TEST(Exception, KeepsCodeTemplateSourceAndArgumentsInOrder) {
    Exception exception(7, "Cannot open camera '%1': %2", "ZELT_GIGE_CAMERA");
    exception.addArgument("Camera Name", "left");
    exception.addArgument("Exception Argument", "busy");
    EXPECT_EQ(exception.getCode(), 7u);
    EXPECT_EQ(exception.getMessage(), "Cannot open camera '%1': %2");
    EXPECT_EQ(exception.getSource(), "ZELT_GIGE_CAMERA");
    ASSERT_EQ(exception.getArguments().size(), 2u);
    EXPECT_EQ(exception.getArguments()[0].name, "Camera Name");
    EXPECT_EQ(exception.getArguments()[0].kind, 0);
    EXPECT_EQ(exception.getArguments()[0].value, "left");
    EXPECT_EQ(exception.getArguments()[1].name, "Exception Argument");
    EXPECT_EQ(exception.getArguments()[1].value, "busy");
}

TEST(Exception, IsNoStandardExceptionAndIsDestroyedThroughItsBase) {
    EXPECT_FALSE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_TRUE(std::has_virtual_destructor_v<Exception>);
}

TEST(Placeholders, AreFilledByTheArgumentsInOrder) {
    Exception exception(0, "Cannot open camera '%1': %2", "");
    exception.addArgument("a", "left");
    exception.addArgument("b", "busy");
    EXPECT_EQ(fillPlaceholders(exception), "Cannot open camera 'left': busy");
}

TEST(Placeholders, StayWithoutAnArgument) {
    Exception exception(0, "%1 and %2", "");
    exception.addArgument("a", "one");
    EXPECT_EQ(fillPlaceholders(exception), "one and %2");
}

TEST(Placeholders, InsideAnArgumentAreText) {
    Exception exception(0, "%1 %2", "");
    exception.addArgument("a", "%2");
    exception.addArgument("b", "two");
    EXPECT_EQ(fillPlaceholders(exception), "%2 two");
}

TEST(Placeholders, MayRepeatAndLoneOrDoublePercentSignsAreText) {
    Exception exception(0, "%1%1 100% %% %x %0 %", "");
    exception.addArgument("a", "ab");
    EXPECT_EQ(fillPlaceholders(exception), "abab 100% %% %x %0 %");
}

}  // namespace
