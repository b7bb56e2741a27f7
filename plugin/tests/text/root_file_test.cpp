#include "text/root_file.hpp"

#include <gtest/gtest.h>

namespace {

using morvesk::text::freshRootLines;
using morvesk::text::RootFile;
using morvesk::text::RootType;

std::string contentOf(const RootFile& root) {
    std::string content(root.room(), '\0');
    content.resize(root.write(content.data()));
    return content;
}

std::string contentOf(std::initializer_list<std::string_view> lines) {
    RootFile root(RootType::Tv);
    for (const auto line : lines) {
        root.addLine(line);
    }
    return contentOf(root);
}

std::string referenceTo(RootType type, std::string_view name) {
    RootFile root(type);
    root.addReference(name);
    return contentOf(root);
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
    EXPECT_EQ(referenceTo(RootType::Tv, "userbouquet.a.tv"),
              "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.tv\" ORDER BY bouquet\n");
    EXPECT_EQ(referenceTo(RootType::Radio, "userbouquet.a.radio"),
              "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.a.radio\" ORDER BY bouquet\n");
}

TEST(RootFile, KeepsTheLinesAndTheirOrder) {
    EXPECT_EQ(contentOf({"#NAME x\n", "b\n", "a\n", "b\n"}), "#NAME x\nb\na\nb\n");
}

TEST(RootFile, EndsEveryLineInOneLineFeed) {
    EXPECT_EQ(contentOf({"a\r\n", "\r\rb\rc\n", "\n", "", "d"}), "a\nbc\n\n\nd\n");
}

// As a host's own kind of file may give them.
TEST(RootFile, DropsLineFeedsInsideOfALine) {
    EXPECT_EQ(contentOf({"a\nb\n\nc\n", "\n\r\nd"}), "abc\nd\n");
}

TEST(RootFile, IsEmptyWithoutLines) {
    EXPECT_EQ(contentOf({}), "");
}

TEST(RootFile, AddsNoReferenceThatEqualsALineAsItWasRead) {
    constexpr std::string_view line = "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"a\" ORDER BY bouquet\n";
    const auto lessLineEnd = line.substr(0, line.size() - 1);
    RootFile root(RootType::Tv);
    root.addLine(line);
    const auto carried = std::string(lessLineEnd) + "\r";
    root.addLine(carried);
    EXPECT_TRUE(root.addReference("a"));
    root.addLine(lessLineEnd);
    EXPECT_FALSE(root.addReference("a"));
    EXPECT_TRUE(root.addReference("b"));
    EXPECT_EQ(contentOf(root), std::string(line) + std::string(line) + std::string(line) + std::string(line) +
                                   referenceTo(RootType::Tv, "b"));
}

TEST(RootFile, AddsAReferenceAsOftenAsItIsAskedFor) {
    RootFile root(RootType::Radio);
    EXPECT_TRUE(root.addReference("new"));
    EXPECT_TRUE(root.addReference("new"));
    EXPECT_EQ(contentOf(root), referenceTo(RootType::Radio, "new") + referenceTo(RootType::Radio, "new"));
}

TEST(RootFile, LeavesReferencesAsTheyAre) {
    RootFile root(RootType::Tv);
    root.addLine("o\rld\r\n");
    root.addReference("n\r\new");
    EXPECT_EQ(contentOf(root), "old\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"n\r\new\" ORDER BY bouquet\n");
}

}  // namespace
