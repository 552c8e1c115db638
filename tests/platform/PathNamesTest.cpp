// PathNamesTest: names on disk come back as they were, whatever bytes they have.
#include "PathNames.hpp"

#include <gtest/gtest.h>

#include <random>

using pathnames::decode;
using pathnames::encode;

TEST(PathNames, KeepsTextAsText) {
    EXPECT_EQ(decode("a/b.txt"), u"a/b.txt");
    EXPECT_EQ(decode("\xC3\xA9\xE2\x82\xAC"), u"\u00E9\u20AC");
    EXPECT_EQ(decode("\xF0\x9F\x98\x80"), u"\U0001F600");
    EXPECT_EQ(encode(u"\u00E9\u20AC\U0001F600"), "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(PathNames, GivesEveryByteThatIsNoTextItsOwnCharacter) {
    EXPECT_EQ(decode("a\xFF"), u"a\uEFFF");
    EXPECT_EQ(decode("\xC0\x80"), u"\uEFC0\uEF80") << "an overlong form";
    EXPECT_EQ(decode("\xE2\x82"), u"\uEFE2\uEF82") << "a character cut off";
    EXPECT_EQ(decode("\xED\xA0\x80"), u"\uEFED\uEFA0\uEF80") << "a surrogate";
    EXPECT_EQ(decode("\xF4\x90\x80\x80"), u"\uEFF4\uEF90\uEF80\uEF80") << "beyond Unicode";
}

TEST(PathNames, TellsAnEscapeFromANameThatHoldsSuchACharacter) {
    const std::string name = "\xEE\xBF\xBF"; // U+EFFF
    EXPECT_EQ(decode(name), u"\uEFEE\uEFBF\uEFBF");
    EXPECT_EQ(encode(decode(name)), name);
}

TEST(PathNames, TakesSurrogatesWithoutTheirPartner) {
    EXPECT_EQ(encode(std::u16string{u'a', 0xD800}), "a\xED\xA0\x80");
    EXPECT_EQ(encode(std::u16string{0xDC00, 0xD800, u'b'}), "\xED\xB0\x80\xED\xA0\x80"
                                                            "b");
}

TEST(PathNames, BringsEveryNameBack) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; round++) {
        std::string name;
        // Bytes from a small set that often forms, and often spoils, longer characters.
        static constexpr unsigned char bytes[] = {'a',  0x80, 0xBF, 0xC2, 0xED, 0xA0,
                                                  0xEE, 0xBE, 0xF0, 0x9F, 0xF4, 0xFF};
        for (size_t i = random() % 8; i > 0; i--) {
            name.push_back(static_cast<char>(bytes[random() % std::size(bytes)]));
        }
        ASSERT_EQ(encode(decode(name)), name) << testing::PrintToString(name);
    }
}
