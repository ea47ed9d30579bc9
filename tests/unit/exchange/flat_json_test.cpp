#include "exchange/flat_json.h"
#include <gtest/gtest.h>
#include <string>

TEST(FlatJson, ReadsEveryKindOfValueWithBlanksAnywhere) {
    const auto fields = readFlatJson(" {\r\n \"a\" :\t\"text\" , \"b\":-12.5e2,\"c\":true,\"d\":false,\"e\":null} \n");
    ASSERT_TRUE(fields);
    ASSERT_EQ(fields->size(), 5u);
    EXPECT_EQ((*fields)[0].text, "text");
    EXPECT_EQ((*fields)[0].kind, FlatKind::kText);
    EXPECT_EQ((*fields)[1].kind, FlatKind::kNumber);
    EXPECT_EQ((*fields)[1].number, -1250.0);
    EXPECT_EQ((*fields)[2].kind, FlatKind::kTrue);
    EXPECT_EQ((*fields)[3].kind, FlatKind::kFalse);
    EXPECT_EQ((*fields)[4].kind, FlatKind::kNull);
    EXPECT_EQ(findField(*fields, "b"), &(*fields)[1]);
    EXPECT_EQ(findField(*fields, "z"), nullptr);
}

TEST(FlatJson, TakesAnEmptyObjectAndAByteOrderMark) {
    EXPECT_TRUE(readFlatJson("{}"));
    EXPECT_TRUE(readFlatJson("\xEF\xBB\xBF{\"a\":1}"));
}

TEST(FlatJson, RefusesWhatIsNotOneFlatObject) {
    const char* const rows[] = {"",
                                " ",
                                "{",
                                "}",
                                "[]",
                                "{\"a\":1}x",
                                "{\"a\":1}{}",
                                "{\"a\":1,}",
                                "{,}",
                                "{\"a\" 1}",
                                "{a:1}",
                                "{\"a\":}",
                                "{\"a\":{}}",
                                "{\"a\":[1]}",
                                "{\"a\":1,\"a\":2}",
                                "{\"a\":\"x\\n\"}",
                                "{\"a\":\"x\ny\"}",
                                "{\"a\":tru}",
                                "{\"a\":+1}",
                                "{\"a\":.5}",
                                "{\"a\":5.}",
                                "{\"a\":1e}",
                                "{\"a\":1e+}",
                                "{\"a\":-}",
                                "{\"a\":0x10}",
                                "{\"a\":nan}",
                                "{\"a\":inf}",
                                "{\"a\":1e999}",
                                "{\"a\":1,5}"};
    for (const char* row : rows) EXPECT_FALSE(readFlatJson(row)) << row;
}

TEST(FlatJson, RefusesMoreThan64Fields) {
    const auto object = [](int count) {
        std::string text = "{";
        for (int i = 0; i < count; i++) text += (i ? ",\"" : "\"") + std::to_string(i) + "\":0";
        return text + "}";
    };
    EXPECT_TRUE(readFlatJson(object(64)));
    EXPECT_FALSE(readFlatJson(object(65)));
}
