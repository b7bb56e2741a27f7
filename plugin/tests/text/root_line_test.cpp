#include "text/root_line.hpp"

#include <gtest/gtest.h>

namespace {

using morvesk::text::namesUserBouquet;
using morvesk::text::quotedName;

TEST(RootLine, NamesTheFileBetweenDoubleQuotes) {
    EXPECT_EQ(quotedName("#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" ORDER BY bouquet\n"),
              "userbouquet.a.tv");
}

TEST(RootLine, NamesTheFileBetweenSingleQuotes) {
    EXPECT_EQ(quotedName("#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET 'userbouquet.a.tv' ORDER BY bouquet\n"),
              "userbouquet.a.tv");
}

TEST(RootLine, PrefersDoubleQuotes) {
    EXPECT_EQ(quotedName("'userbouquet.a.tv' \"userbouquet.b.tv\"\n"), "userbouquet.b.tv");
    EXPECT_EQ(quotedName("\"something else\" 'userbouquet.a.tv'\n"), "something else");
}

TEST(RootLine, TurnsToSingleQuotesWhereDoubleQuotesHoldNothing) {
    EXPECT_EQ(quotedName("\"\" 'userbouquet.a.tv'\n"), "userbouquet.a.tv");
    EXPECT_EQ(quotedName("\"\"\n"), "\"\"");
}

TEST(RootLine, ReachesToTheLastByteFromAQuoteThatIsNotClosed) {
    EXPECT_EQ(quotedName("FROM BOUQUET \"userbouquet.a.tv\n"), "userbouquet.a.tv");
    EXPECT_EQ(quotedName("FROM BOUQUET \"userbouquet.a.tv"), "userbouquet.a.t");
    EXPECT_EQ(quotedName("FROM BOUQUET 'userbouquet.a.tv\n"), "userbouquet.a.tv");
}

TEST(RootLine, TakesABareFileName) {
    EXPECT_EQ(quotedName("userbouquet.a.tv\n"), "userbouquet.a.tv");
    EXPECT_EQ(quotedName("userbouquet.it's.tv\n"), "userbouquet.it's.tv");
}

TEST(RootLine, GivesTheLineLessItsLastByteForLackOfQuotes) {
    EXPECT_EQ(quotedName("#NAME Bouquets (TV)\n"), "#NAME Bouquets (TV)");
    EXPECT_EQ(quotedName("\n"), "");
    EXPECT_EQ(quotedName(""), "");
    EXPECT_EQ(quotedName("'"), "");
    EXPECT_EQ(quotedName("\""), "");
}

TEST(RootLine, KeepsBytesOfEveryKind) {
    EXPECT_EQ(quotedName({"\"user\0bouquet\"\n", 15}), std::string_view("user\0bouquet", 12));
}

TEST(RootLine, KnowsUserBouquetsByBothEnds) {
    EXPECT_TRUE(namesUserBouquet("userbouquet.a.tv", ".tv"));
    EXPECT_TRUE(namesUserBouquet("userbouquet.tv", ".tv"));
    EXPECT_FALSE(namesUserBouquet("userbouquet.a.radio", ".tv"));
    EXPECT_FALSE(namesUserBouquet("userbouquet.a.tv", ".radio"));
    EXPECT_FALSE(namesUserBouquet("Userbouquet.a.tv", ".tv"));
    EXPECT_FALSE(namesUserBouquet("subbouquet.a.tv", ".tv"));
    EXPECT_FALSE(namesUserBouquet("", ".tv"));
}

}  // namespace
