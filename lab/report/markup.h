#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::lab {

// The page is HTML that an XML parser reads too. Every text that is not a literal of this program
// goes through XmlText; what is called markup here is already escaped.

/// "12,345".
std::string NumberText(std::size_t number);

/// The part in tenths of a percent, rounded down: "65.4 %"; "0.0 %" of nothing.
std::string ShareText(std::size_t part, std::size_t whole);

/// A link to the element of that ID on the page.
std::string LinkTo(std::string_view id, std::string_view markup);

/// The number as a link to its list; 0, which has no list, as it is.
std::string NumberLink(std::string_view id, std::size_t number);

/// The part of an ID that names something: "no controllers" as "no-controllers".
std::string IdOf(std::string_view name);

/// "1 computer", "12,345 computers".
std::string ComputersText(std::size_t count);

/// A column of a table.
struct Column {
  std::string name;  // markup
  bool isNumber = false;
};

/// A cell of a row: the name of the row, a text column, the location in a file, or a number column.
/// A narrow screen shows the label before the number in a table without a head.
std::string HeadCell(std::string_view markup);
std::string TextCell(std::string_view markup);
std::string LineCell(std::string_view markup);
std::string NumberCell(std::string_view markup, std::string_view label = {});

/// A table; `bodies` are its elements "tbody".
std::string TableMarkup(std::string_view id, std::string_view caption,
                        const std::vector<Column>& columns, std::string_view bodies);

/// A table that is scrolled where it is wider than the screen.
std::string WideMarkup(std::string_view label, std::string_view table);

/// A table of which a narrow screen shows every row as a block.
std::string StackMarkup(std::string_view table);

/// Contents that are shown on demand, or from the start where they are short.
std::string DetailsMarkup(std::string_view summary, std::string_view contents, bool isOpen);

/// A list of at most that many items is shown from the start.
inline constexpr std::size_t MaxOpenItems = 12;

/// What follows a list of which that many items are missing: the number, and the command that
/// prints all. Empty when none is.
std::string OthersMarkup(std::size_t count, std::string_view command);

/// A command that is to be run in a shell, as an element.
std::string CommandMarkup(std::string_view command);

/// An argument as a shell reads it back: in single quotes unless it has plain characters alone.
std::string ShellWord(std::string_view argument);

}  // namespace fernwick::lab
