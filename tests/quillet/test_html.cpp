#include "quillet/html.h"

#include <gtest/gtest.h>

namespace quillet
{
namespace
{

TEST(Html, MarkupCharactersOfTextAreEscaped)
{
    EXPECT_EQ(escape("<script>alert(\"a & b\")</script>").str(),
              "&lt;script&gt;alert(&quot;a &amp; b&quot;)&lt;/script&gt;");
}

TEST(Html, CharactersThatXmlForbidsAreDropped)
{
    EXPECT_EQ(escape(std::string_view("a\0b\x01"
                                      "c\x1F\td\ne\xEF\xBF\xBE\xC2\x85",
                                      17))
                  .str(),
              "abc\td\ne");
}

TEST(Html, CarriageReturnsBecomeLineFeeds)
{
    EXPECT_EQ(escape("a\rb").str(), "a\nb");
}

TEST(Html, BytesThatAreNotUtf8BecomeReplacementCharacters)
{
    EXPECT_EQ(escape("a\xE9z").str(), "a\uFFFDz");
}

TEST(Html, OutputIsPureAscii)
{
    EXPECT_EQ(to_ascii("<p>caf\u00E9 \u2212 \U0001D400</p>"), "<p>caf&#233; &#8722; &#119808;</p>");
    EXPECT_EQ(to_ascii("a\xE9z"), "a&#65533;z");
}

} // namespace
} // namespace quillet
