#include "text/feed_address.hpp"

#include <gtest/gtest.h>

namespace {

using morvesk::text::downloadArea;

TEST(FeedAddress, LiesBesideTheFeed) {
    EXPECT_EQ(downloadArea("src/gz Qel-all http://feed.example/feeds/all\n"),
              "http://feed.example/feeds/settings_download/");
}

TEST(FeedAddress, LosesTheLineEndOfOtherSystems) {
    EXPECT_EQ(downloadArea("src/gz Qel-all http://feed.example/all \t\r\n"), "http://feed.example/settings_download/");
}

TEST(FeedAddress, ReplacesEveryFeedFolder) {
    EXPECT_EQ(downloadArea("src/gz Qel-all http://install.example/all/all\n"),
              "http://instsettings_download/.example/settings_download//settings_download/");
}

TEST(FeedAddress, StripsTheDeclarationAsASetOfBytes) {
    EXPECT_EQ(downloadArea("src/gz Qel-all lazy/all\n"), "y/settings_download/");
}

TEST(FeedAddress, LosesTheEndOfALineWithoutLineEnd) {
    EXPECT_EQ(downloadArea("src/gz Qel-all http://feed.example/feeds/all"), "http://feed.example/feed");
}

TEST(FeedAddress, TakesAnyOtherFirstLine) {
    EXPECT_EQ(downloadArea("# nothing here\n"), "# nothing here");
}

TEST(FeedAddress, IsEmptyForNothing) {
    EXPECT_EQ(downloadArea(""), "");
    EXPECT_EQ(downloadArea("\n"), "");
    EXPECT_EQ(downloadArea("src/gz Qel-all "), "");
    EXPECT_EQ(downloadArea("src/gz Qel-all \n"), "");
}

TEST(FeedAddress, StripsWhiteSpaceAsTheInterpreterDoes) {
    EXPECT_EQ(downloadArea("\v\fhttp://h\v\f\n"), "http://h");
    EXPECT_EQ(downloadArea(std::string_view("h\0x\n", 4)), std::string("h\0x", 3));
}

TEST(FeedAddress, ReplacesFromLeftToRight) {
    EXPECT_EQ(downloadArea("http://h/aallall\n"), "http://h/asettings_download/settings_download/");
}

}  // namespace
