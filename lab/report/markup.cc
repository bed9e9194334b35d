#include "lab/report/markup.h"

#include <algorithm>

#include "lab/survey/xml_text.h"

namespace fernwick::lab {

std::string NumberText(std::size_t number) {
  auto digits = std::to_string(number);
  for (auto end = digits.size(); end > 3; end -= 3) digits.insert(end - 3, 1, ',');
  return digits;
}

std::string ShareText(std::size_t part, std::size_t whole) {
  const auto perMille = whole == 0 ? 0 : part * 1000 / whole;
  return std::to_string(perMille / 10) + "." + std::to_string(perMille % 10) + " %";
}

std::string LinkTo(std::string_view id, std::string_view markup) {
  return std::string("<a href=\"#").append(id).append("\">").append(markup).append("</a>");
}

std::string NumberLink(std::string_view id, std::size_t number) {
  return number == 0 ? "0" : LinkTo(id, NumberText(number));
}

std::string IdOf(std::string_view name) {
  std::string id(name);
  std::ranges::replace(id, ' ', '-');
  return id;
}

std::string ComputersText(std::size_t count) {
  return NumberText(count) + (count == 1 ? " computer" : " computers");
}

std::string HeadCell(std::string_view markup) {
  return std::string("<th scope=\"row\">").append(markup).append("</th>");
}

std::string TextCell(std::string_view markup) {
  return std::string("<td>").append(markup).append("</td>");
}

std::string LineCell(std::string_view markup) {
  return std::string("<td class=\"at\">").append(markup).append("</td>");
}

std::string NumberCell(std::string_view markup, std::string_view label) {
  std::string cell = "<td class=\"n\"";
  if (!label.empty()) cell.append(" data-label=\"").append(label).append("\"");
  return cell.append(">").append(markup).append("</td>");
}

std::string WideMarkup(std::string_view label, std::string_view table) {
  return std::string("<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"")
      .append(label)
      .append("\">\n")
      .append(table)
      .append("</div>\n");
}

std::string StackMarkup(std::string_view table) {
  return std::string("<div class=\"stack\">\n").append(table).append("</div>\n");
}

std::string TableMarkup(std::string_view id, std::string_view caption,
                        const std::vector<Column>& columns, std::string_view bodies) {
  auto markup = std::string("<table id=\"").append(id).append("\"><caption>").append(caption);
  markup += "</caption>\n<thead><tr>";
  for (const auto& column : columns) {
    markup += column.isNumber ? "<th scope=\"col\" class=\"n\">" : "<th scope=\"col\">";
    markup += column.name + "</th>";
  }
  return markup.append("</tr></thead>\n").append(bodies).append("</table>\n");
}

std::string DetailsMarkup(std::string_view summary, std::string_view contents, bool isOpen) {
  return std::string(isOpen ? "<details open=\"open\">" : "<details>")
      .append("<summary>")
      .append(summary)
      .append("</summary>\n")
      .append(contents)
      .append("</details>\n");
}

std::string OthersMarkup(std::size_t count, std::string_view command) {
  if (count == 0) return "";
  return "<p class=\"more\">" + NumberText(count) + " more; all: " + CommandMarkup(command) +
         "</p>\n";
}

std::string CommandMarkup(std::string_view command) {
  return "<code>" + XmlText(command) + "</code>";
}

std::string ShellWord(std::string_view argument) {
  constexpr std::string_view Plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./:,@%";
  const bool isPlain = argument.find_first_not_of(Plain) == std::string_view::npos;
  if (isPlain && !argument.empty()) return std::string(argument);
  std::string word = "'";
  for (const char character : argument) {
    character == '\'' ? word += "'\\''" : word += character;
  }
  return word + "'";
}

}  // namespace fernwick::lab
