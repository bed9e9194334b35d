#include "lab/report/computer_groups.h"

#include <gtest/gtest.h>

namespace fernwick::lab {
namespace {

TEST(ComputerGroups, HaveTheLargestFirstAndEachComputerOnce) {
  ComputerGroups groups("g", 1000);
  EXPECT_TRUE(groups.IsEmpty());
  groups.Add("small", {1, "one"});
  groups.Add("large", {1, "one"}, 2);
  groups.Add("large", {1, "one"});
  groups.Add("large", {2, "two"});
  EXPECT_FALSE(groups.IsEmpty());
  const auto row = [](const std::string& text, const std::string& items, const std::string& count,
                      const std::string& id, const std::string& names) {
    return "<tr><th scope=\"row\">" + text + "</th><td class=\"n\" data-label=\"Ports\">" + items +
           "</td><td class=\"n\" data-label=\"Computers\"><a href=\"#" + id + "\">" + count +
           "</a></td><td><details open=\"open\"><summary>names</summary>\n<div id=\"" + id +
           "\"><ul class=\"names\">" + names + "</ul>\n</div>\n</details>\n</td></tr>\n";
  };
  EXPECT_EQ(
      groups.Markup("Groups", "What", "all", "Ports"),
      "<div class=\"stack\">\n<table id=\"g\"><caption>Groups</caption>\n<thead><tr>"
      "<th scope=\"col\">What</th><th scope=\"col\" class=\"n\">Ports</th>"
      "<th scope=\"col\" class=\"n\">Computers</th><th scope=\"col\">Which</th></tr></thead>\n"
      "<tbody>\n" +
          row("large", "4", "2", "g-2", "<li>one</li><li>two</li>") +
          row("small", "1", "1", "g-1", "<li>one</li>") + "</tbody>\n</table>\n</div>\n");
}

TEST(ComputerGroups, CountWhatIsNotListed) {
  ComputerGroups groups("g", 30);
  groups.Add("text", {1, "x"});
  groups.Add("text", {2, std::string(11, 'x')});
  groups.Add("another, longer", {3, "y"});
  const auto markup = groups.Markup("Groups", "What", "all");
  EXPECT_NE(markup.find("<p class=\"more\">1 more; all: <code>all</code></p>\n</div>"),
            std::string::npos);
  EXPECT_TRUE(markup.ends_with("</div>\n<p class=\"more\">1 more; all: <code>all</code></p>\n"));
}

TEST(ComputerGroups, AreThereWhateverNamesTheFirstOnesHave) {
  ComputerGroups groups("g", 100);
  for (std::size_t i = 0; i < 50; ++i) groups.Add("often", {i, "name"});
  groups.Add("once", {50, "name"});
  const auto markup = groups.Markup("Groups", "What", "all");
  EXPECT_NE(markup.find("<th scope=\"row\">once</th>"), std::string::npos);
  EXPECT_NE(markup.find("<a href=\"#g-2\">1</a>"), std::string::npos);
}

TEST(ComputerGroups, WithoutANameHaveTheNumberAlone) {
  ComputerGroups groups("g", 8);
  groups.Add("text", {1, "x"});
  EXPECT_NE(groups.Markup("Groups", "What", "all").find("<div id=\"g-1\"><p class=\"more\">1 more"),
            std::string::npos);
}

TEST(ComputerGroups, AreNotMoreThanEnough) {
  ComputerGroups groups("g", 1'000'000);
  for (std::size_t i = 0; i <= ComputerGroups::MaxGroups; ++i)
    groups.Add(std::to_string(i), {i, "x"});
  const auto markup = groups.Markup("Groups", "What", "all");
  EXPECT_NE(markup.find("id=\"g-200\""), std::string::npos);
  EXPECT_EQ(markup.find("id=\"g-201\""), std::string::npos);
}

}  // namespace
}  // namespace fernwick::lab
