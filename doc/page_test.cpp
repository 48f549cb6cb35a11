#include "doc/page.h"

#include <gtest/gtest.h>

#include "doc/page_parameter.h"
#include "doc/testing.h"

namespace {

std::string cardOf(const std::string& text, const std::string& name) {
  const DocModel model = modelOf(text);
  std::string html;
  appendParameter(html, model, *model.find(name), 4);
  return html;
}

TEST(Page, ACardHasAllThatIsKnownOfAParameter) {
  EXPECT_EQ(cardOf("mode rw { rangeValid { \"a\" } }\n"
                   "i index { rangeValid { 1..2 } }\n"
                   "# The <gain>.\n"
                   "#\n"
                   "# Second.\n"
                   "gain rw { index { i }\n"
                   "  rangeValid (mode == \"a\") { 0..399 }\n"
                   "  rangeValid (mode == \"b\") { 0..(level), 1..2, \"off\" }\n"
                   "  ctrlRO (mode == \"c\") ctrlRO (level)\n"
                   "  ctrlValid (mode != \"d\")\n"
                   "  valueChange { \"x\" -> 7 }\n"
                   "  default { 7 } }\n"
                   "level ro { rangeValid { 0..99 } }\n"
                   "last ro { rangeValid { (gain[1]) } }\n",
                   "gain"),
            "<article id=\"p-gain\" data-a=rw data-l=1>"
            "<h4><a href=\"#p-gain\">gain</a><a class=i href=\"#i-i\">[i]</a>"
            "<span class=\"a rw\">read and write</span></h4>"
            "<p>The &lt;gain&gt;.</p><p>Second.</p><dl>"
            "<dt>Exists<dd><div>while <a href=\"#p-mode\">mode</a> is not <q>d</q></div>\n"
            "<dt>Values<dd><div>"
            "<span class=c>while <a href=\"#p-mode\">mode</a> is <q>a</q>:</span> <b>0 … 399</b>"
            "<svg class=s viewBox=\"0 0 400 14\" aria-hidden=true>"
            "<path class=t d=\"M0 6h400v2H0z\"/><path d=\"M0 4h400v6h-400z\"/>"
            "<path class=m d=\"M6 0h2v14h-2z\"/></svg></div>"
            "<div><span class=c>while <a href=\"#p-mode\">mode</a> is <q>b</q>:</span> "
            "<b class=x>0 … <a href=\"#p-level\">level</a></b> <b class=x>1 … 2</b> "
            "<b class=x><q>off</q></b></div>\n"
            "<dt>Default<dd><div>7</div>\n"
            "<dt>Replaced<dd><div><q>x</q> becomes <q>7</q></div>\n"
            "<dt>Read-only<dd><div>while <a href=\"#p-mode\">mode</a> is <q>c</q></div>"
            "<div>or while <a href=\"#p-level\">level</a> is not 0</div>\n"
            "<dt>Follows<dd><a href=\"#p-level\">level</a>, <a href=\"#p-mode\">mode</a>\n"
            "<dt>Followed by<dd><a href=\"#p-last\">last</a>\n"
            "</dl></article>\n");
}

TEST(Page, FewNumbersAreShownOneByOne) {
  const std::string card = cardOf("a ro { rangeValid { 0..1, 5..8, 10..14 } }\n", "a");
  EXPECT_NE(card.find("<b>0</b> <b>1</b> <b>5</b> <b>6</b> <b>7</b> <b>8</b> <b>10 … 14</b><svg"),
            std::string::npos)
      << card;
  EXPECT_EQ(cardOf("a ro { rangeValid { 0..1 } }\n", "a").find("<svg"), std::string::npos);
  EXPECT_NE(cardOf("a ro { rangeValid { 0, 3 } }\n", "a").find("<svg"), std::string::npos);
}

TEST(Page, ACardLeadsToTheStandards) {
  DocModel model = modelOf("mode rw { }\na rw { rangeValid { 0..(vidStd::mode::spal) } }\n");
  const auto card = [&] {
    std::string html;
    appendParameter(html, model, model.parameters[1], 3);
    return html;
  };
  EXPECT_EQ(card().find("#standards"), std::string::npos);
  model.standards = {{"mode", {"625i/50"}, {{"a", "", {{}}}}}};
  EXPECT_NE(card().find("<dt>By standard<dd><a href=\"#standards\">limits and defaults</a>\n"),
            std::string::npos);
}

TEST(Page, ALongListOfNamesIsOpened) {
  std::string text = "mode rw { }\n";
  for (int i = 0; i < 60; ++i) text += "a" + std::to_string(i) + " rw { ctrlRO (mode) }\n";
  EXPECT_EQ(cardOf(text, "mode").find("<details>"), std::string::npos);
  text += "b rw { ctrlRO (mode) }\n";
  const std::string card = cardOf(text, "mode");
  EXPECT_NE(card.find("<dt>Followed by<dd><details><summary>61 parameters</summary><a href"),
            std::string::npos);
  EXPECT_NE(card.find("<a href=\"#p-b\">b</a></details>\n"), std::string::npos);
}

TEST(Page, HasAPolicyForExactlyItsScripts) {
  const DocModel model = modelOf("a rw { default { \"</script><b>\" } }\n");
  const std::string page = pageText(model, {});
  EXPECT_NE(page.find("default-src 'none'; base-uri 'none'; form-action 'none'; "
                      "style-src 'sha256-"),
            std::string::npos);
  EXPECT_EQ(page.find("unsafe"), std::string::npos);
  EXPECT_EQ(page.find("id=\"device-data\""), std::string::npos);
  EXPECT_EQ(page.find("{{"), std::string::npos);
  const std::string live = pageText(model, {{}, "{\"a\": \"</script>\"}", "class OstrelDevice {}"});
  EXPECT_NE(live.find("id=\"device-data\">{\"a\": \"\\u003c/script>\"}</script>"),
            std::string::npos);
  const size_t evaluator = live.find("<script>class OstrelDevice {}</script>");
  EXPECT_NE(evaluator, std::string::npos);
  EXPECT_EQ(live.find("class OstrelDevice", evaluator + 10), std::string::npos);
  // The policy allows two scripts more.
  const auto end = [](const std::string& text) { return text.find('"', text.find("script-src")); };
  EXPECT_EQ(end(live), end(page) + size_t{2} * 54);
}

TEST(Page, LeadsToThePartsThatItHas) {
  DocModel model = modelOf("mode rw { }\n");
  const auto links = [&](const PageParts& parts) {
    const std::string page = pageText(model, parts);
    const size_t from = page.find("<ul class=\"parts\">\n") + 19;
    return page.substr(from, page.find("</ul>", from) - from);
  };
  EXPECT_EQ(links({}), "<li><a href=\"#parameters\">Parameters</a>\n");
  EXPECT_EQ(pageText(model, {}).find("<h2 id=indices>"), std::string::npos);
  model = modelOf("mode rw { }\ni index { rangeValid { 1 } }\na rw { index { i } }\n");
  model.standards = {{"mode", {"625i/50"}, {}}};
  EXPECT_EQ(links({"<section id=picture></section>", {}, {}}),
            "<li><a href=\"#picture\">What follows what</a>\n"
            "<li><a href=\"#standards\">Video standards</a>\n"
            "<li><a href=\"#parameters\">Parameters</a>\n"
            "<li><a href=\"#indices\">Indices</a>\n");
  EXPECT_NE(pageText(model, {}).find("<h2 id=indices>Indices</h2>\n<article id=\"i-i\">"),
            std::string::npos);
}

TEST(Page, HasItsParametersInTheSectionsOfTheText) {
  const std::string page =
      pageText(modelOf("a rw { }\n# ---- Sound & <light> ----\nb rw { }\n"), {});
  EXPECT_NE(page.find("<h3><a href=\"#p-a\">"), std::string::npos);
  EXPECT_NE(page.find("<section class=g id=s-1><h3 class=g>Sound &amp; &lt;light&gt;</h3>"
                      "<article id=\"p-b\" data-a=rw data-l=0><h4>"),
            std::string::npos);
  EXPECT_NE(page.find("<a class=h href=\"#s-1\">Sound &amp; &lt;light&gt;</a><ul>"
                      "<li><a href=\"#p-b\">b</a></ul>"),
            std::string::npos);
  EXPECT_NE(page.find("2 parameters, 0 indices, 1 level, from <code>device.ostrel</code>"),
            std::string::npos);
}

}  // namespace
