#include "text/catalogue.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Fields = std::array<std::string, 4>;

std::vector<Fields> parse(std::string_view body) {
    std::vector<Fields> entries;
    morvesk::text::CatalogueReader reader(body);
    while (const auto entry = reader.next()) {
        Fields fields;
        for (std::size_t index = 0; index < fields.size(); ++index) {
            fields[index] = entry->fields[index];
        }
        entries.push_back(fields);
    }
    return entries;
}

using Entries = std::vector<Fields>;

TEST(Catalogue, HoldsOneEntryALine) {
    EXPECT_EQ(parse("A:::B:::C:::D\nE:::F:::G:::H\n"), (Entries{{"A", "B", "C", "D"}, {"E", "F", "G", "H"}}));
}

TEST(Catalogue, NeedsNoLastLineEnd) {
    EXPECT_EQ(parse("A:::B:::C:::D"), (Entries{{"A", "B", "C", "D"}}));
}

TEST(Catalogue, StripsTheFieldsAndKeepsInnerBlanks) {
    EXPECT_EQ(parse(" A  a ::: \tB ::: C\v\f ::: D \r\n"), (Entries{{"A  a", "B", "C", "D"}}));
}

TEST(Catalogue, IsEmptyForNothing) {
    EXPECT_EQ(parse(""), Entries{});
    EXPECT_EQ(parse("\n\r\n \n"), Entries{});
}

TEST(Catalogue, SkipsCommentsThatBeginTheLine) {
    EXPECT_EQ(parse("#A:::B:::C:::D\n #A:::B:::C:::D\n#"), (Entries{{"#A", "B", "C", "D"}}));
}

TEST(Catalogue, SkipsLinesWithFewerOrMoreFields) {
    EXPECT_EQ(parse("A:::B:::C\nA:::B:::C:::D:::E\nA::B::C::D\n:::\n"), Entries{});
}

TEST(Catalogue, AllowsEmptyFields) {
    EXPECT_EQ(parse("A::::::C:::D\n:::::::::\n"), (Entries{{"A", "", "C", "D"}, {"", "", "", ""}}));
}

TEST(Catalogue, SeparatesAtTheFirstThreeOfMoreColons) {
    EXPECT_EQ(parse("A::::B:::C:::D\n"), (Entries{{"A", ":B", "C", "D"}}));
    EXPECT_EQ(parse("A:::B:::C:::D::\n"), (Entries{{"A", "B", "C", "D::"}}));
}

TEST(Catalogue, KeepsTheOrderAndDuplicates) {
    EXPECT_EQ(parse("B:::1:::2:::3\nA:::1:::2:::3\nB:::1:::2:::3\n"),
              (Entries{{"B", "1", "2", "3"}, {"A", "1", "2", "3"}, {"B", "1", "2", "3"}}));
}

TEST(Catalogue, EndsLinesAtLineFeedsOnly) {
    EXPECT_EQ(parse("A\r:::B\vb:::C\x85:::D\r"), (Entries{{"A", "B\vb", "C\x85", "D"}}));
}

TEST(Catalogue, TakesNulBytesAsContent) {
    EXPECT_EQ(parse({"\0A:::B\0:::C:::\0\n", 16}),
              (Entries{{std::string("\0A", 2), std::string("B\0", 2), "C", std::string("\0", 1)}}));
}

}  // namespace
