#include "quillet/cif_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillet
{
namespace
{

using testing::ElementsAre;

std::string html(std::string_view text)
{
    return text_to_html(text).str();
}

TEST(CifText, GreekLetters)
{
    EXPECT_EQ(html(R"(\a\b\c\d\e\f\g\h\i\k\l\m\n\o\p\q\r\s\t\u\w\x\y\z)"),
              "\u03B1\u03B2\u03C7\u03B4\u03B5\u03C6\u03B3\u03B7\u03B9\u03BA\u03BB\u03BC\u03BD\u03BF"
              "\u03C0\u03B8\u03C1\u03C3\u03C4\u03C5\u03C9\u03BE\u03C8\u03B6");
    EXPECT_EQ(html(R"(\D\W)"), "\u0394\u03A9");
    EXPECT_EQ(html(R"(MoK\a \kN)"), "MoK\u03B1 \u03BAN");
}

TEST(CifText, BackslashBeforeAnythingElseStays)
{
    EXPECT_EQ(html(R"(\j \v \J \V \1 end\)"), R"(\j \v \J \V \1 end\)");
}

TEST(CifText, AccentsAreComposed)
{
    EXPECT_EQ(html(R"(\'e\`a\^o\,c\"u\~n\;a\>o\=o\.z\<s\(g)"),
              "\u00E9\u00E0\u00F4\u00E7\u00FC\u00F1\u0105\u0151\u014D\u017C\u0161\u011F");
    EXPECT_EQ(html(R"(C\'isa\<rov\'a)"), "C\u00EDsa\u0159ov\u00E1");
}

TEST(CifText, AccentOnDotlessIOrSpecialLetter)
{
    EXPECT_EQ(html(R"(\'\?i \?i \'\/o)"), "\u00ED \u0131 \u01FF");
}

TEST(CifText, AccentWithoutLetterStays)
{
    EXPECT_EQ(html(R"(\' \"1)"), R"(\' \&quot;1)");
}

TEST(CifText, SpecialLettersAndDegree)
{
    EXPECT_EQ(html(R"(\%a\%A\&s\&S\/o\/O\/l\/L\/d\/D)"),
              "\u00E5\u00C5\u00DF\u1E9E\u00F8\u00D8\u0142\u0141\u0111\u0110");
    EXPECT_EQ(html(R"(100\%C and 90\% )"), "100\u00B0C and 90\u00B0");
}

TEST(CifText, WordsAfterTwoBackslashes)
{
    EXPECT_EQ(html(R"(C\\db C, C\\tb C, C\\ddb C)"), "C=C, C\u2261C, C\u2248C");
    EXPECT_EQ(html(R"(\\simeq \\sim \\infty \\times \\neq)"), "\u2243 \u223C \u221E \u00D7 \u2260");
    EXPECT_EQ(html(R"(\\langle x\\rangle \\rightarrow \\leftarrow \\square)"),
              "\u27E8 x\u27E9 \u2192 \u2190 \u25A1");
    EXPECT_EQ(html(R"(\\foo)"), "\\\u03C6oo");
}

TEST(CifText, SuperscriptsAndSubscripts)
{
    EXPECT_EQ(html("P2~1~/n, 10^3^ m^-1^"), "P2<sub>1</sub>/n, 10<sup>3</sup> m<sup>\u22121</sup>");
    EXPECT_EQ(html("SO~4~^2-^"), "SO<sub>4</sub><sup>2\u2212</sup>");
    EXPECT_EQ(html(R"(Fc^*^=kFc[1+0.001xFc^2^\l^3^/sin(2\q)]^-1/4^)"),
              "Fc<sup>*</sup>=kFc[1+0.001xFc<sup>2</sup>\u03BB<sup>3</sup>/sin(2\u03B8)]"
              "<sup>\u22121/4</sup>");
    EXPECT_EQ(html("x^a-b^"), "x<sup>a-b</sup>");
}

TEST(CifText, ScriptMarksThatDoNotCloseAreText)
{
    EXPECT_EQ(html("a ^ b"), "a ^ b");
    EXPECT_EQ(html("a^^b"), "a^^b");
    EXPECT_EQ(html("http://x.org/~me and ~you"), "http://x.org/~me and ~you");
    const std::string far(61, 'x');
    EXPECT_EQ(html("^" + far + "^"), "^" + far + "^");
    EXPECT_EQ(html("^" + far.substr(1) + "^"), "<sup>" + far.substr(1) + "</sup>");
}

TEST(CifText, AccentCodesDoNotCloseScripts)
{
    EXPECT_EQ(html(R"(x^n\^e^ y~\~n~)"), "x<sup>n\u00EA</sup> y<sub>\u00F1</sub>");
}

TEST(CifText, ScriptsNestButNotInThemselves)
{
    EXPECT_EQ(html("a^b~c~^"), "a<sup>b<sub>c</sub></sup>");
    EXPECT_EQ(html("a^b~c^~"), "a<sup>b~c</sup>~");
}

TEST(CifText, DashesAndSigns)
{
    EXPECT_EQ(html("a---b 1--2 +-3 -+4 - ---- +-+"),
              "a\u2014b 1\u20132 \u00B13 \u22134 - ---- +-+");
}

TEST(CifText, AllowedTagsPassOthersDoNot)
{
    EXPECT_EQ(html("<i>a</i> <B>b</B> x<br/>y<sup>2</sup>"),
              "<i>a</i> <b>b</b> x<br>y<sup>2</sup>");
    EXPECT_EQ(html("<olex2.extras> R <0.05 <i class=x>"),
              "&lt;olex2.extras&gt; R &lt;0.05 &lt;i class=x&gt;");
    EXPECT_EQ(html("<script>x</script>"), "&lt;script&gt;x&lt;/script&gt;");
    EXPECT_EQ(html("</vexa:authors>"), "&lt;/vexa:authors&gt;");
}

TEST(CifText, TagsThatDoNotNestAreText)
{
    EXPECT_EQ(html("<i>a"), "&lt;i&gt;a");
    EXPECT_EQ(html("a</i>"), "a&lt;/i&gt;");
    EXPECT_EQ(html("<i><b>x</i></b>"), "&lt;i&gt;<b>x&lt;/i&gt;</b>");
    EXPECT_EQ(html("<i>a^2</i>^"), "&lt;i&gt;a<sup>2&lt;/i&gt;</sup>");
}

TEST(CifText, CharacterReferencesAreResolved)
{
    EXPECT_EQ(html("&#945; &#x3b1; a&amp;b &lt;i&gt; &nbsp;"),
              "\u03B1 \u03B1 a&amp;b &lt;i&gt; \u00A0");
    EXPECT_EQ(html("R&D &#0; &#xD800; &foo; &#99999999;"),
              "R&amp;D &amp;#0; &amp;#xD800; &amp;foo; &amp;#99999999;");
}

TEST(CifText, LinesAndBlanksAreJoined)
{
    EXPECT_EQ(html("\n  one\n  two   three \n"), "one two three");
}

TEST(CifText, BlankLinesPartParagraphs)
{
    const auto paragraphs = text_to_paragraphs("; Berger, G.\n  (1996).\n \n\nNext ^\n\nlast^\n");
    ASSERT_EQ(paragraphs.size(), 3U);
    EXPECT_EQ(paragraphs[0].str(), "; Berger, G. (1996).");
    EXPECT_EQ(paragraphs[1].str(), "Next ^");
    EXPECT_EQ(paragraphs[2].str(), "last^");
    EXPECT_TRUE(text_to_paragraphs(" \n \n").empty());
}

TEST(CifText, PlainTextKeepsContentOfMarkup)
{
    EXPECT_EQ(text_to_plain(R"(Fe^3+^ in <i>situ</i><br>M\"uller &amp; S)"),
              "Fe3+ in situ M\u00FCller & S");
}

} // namespace
} // namespace quillet
