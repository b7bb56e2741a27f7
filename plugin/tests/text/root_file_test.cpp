#include "text/root_file.hpp"

#include <gtest/gtest.h>

namespace {

using morvesk::text::freshRootLines;
using morvesk::text::reference;
using morvesk::text::RootFile;
using morvesk::text::RootType;

std::string contentOf(std::initializer_list<std::string_view> lines) {
    RootFile root;
    for (const auto line : lines) {
        root.addLine(line);
    }
    return root.content();
}

TEST(RootFile, StartsAfreshWithItsNameAndTheFavourites) {
    const auto& tv = freshRootLines(RootType::Tv);
    EXPECT_EQ(contentOf({tv[0], tv[1]}),
              "#NAME Bouquets (TV)\n"
              "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.tv\" ORDER BY bouquet\n");
    const auto& radio = freshRootLines(RootType::Radio);
    EXPECT_EQ(contentOf({radio[0], radio[1]}),
              "#NAME Bouquets (Radio)\n"
              "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.radio\" ORDER BY bouquet\n");
}

TEST(RootFile, RefersToTvAndRadioBouquets) {
    EXPECT_EQ(reference(RootType::Tv, "userbouquet.a.tv"),
              "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" ORDER BY bouquet");
    EXPECT_EQ(reference(RootType::Radio, "userbouquet.a.radio"),
              "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.radio\" ORDER BY bouquet");
}

TEST(RootFile, KeepsTheLinesAndTheirOrder) {
    EXPECT_EQ(contentOf({"#NAME x\n", "b\n", "a\n", "b\n"}), "#NAME x\nb\na\nb\n");
}

TEST(RootFile, EndsEveryLineInOneLineFeed) {
    EXPECT_EQ(contentOf({"a\r\n", "\r\rb\rc\n", "\n", "", "d"}), "a\nbc\n\n\nd\n");
}

TEST(RootFile, IsEmptyWithoutLines) {
    EXPECT_EQ(contentOf({}), "");
}

TEST(RootFile, HoldsALineOnlyAsItWasRead) {
    RootFile root;
    root.addLine("terminated\n");
    root.addLine("carried\r");
    root.addLine("open");
    EXPECT_FALSE(root.holds("terminated"));
    EXPECT_FALSE(root.holds("carried"));
    EXPECT_TRUE(root.holds("carried\r"));
    EXPECT_TRUE(root.holds("open"));
    EXPECT_FALSE(root.holds("ope"));
}

TEST(RootFile, DoesNotHoldItsNewReferences) {
    RootFile root;
    root.addReference("new");
    EXPECT_FALSE(root.holds("new"));
    EXPECT_EQ(root.content(), "new\n");
}

}  // namespace
