#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lab/draft/controller_table.h"
#include "lab/draft/selectors.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

/// What the personalities of a draft install.
struct DraftTarget {
  TypeSet type;
  std::string image;      // the name of a file in the board's directory
  PropertyValue version;  // a number
};

/// Why no personality of the target can match the controller, as in "it runs engineering firmware";
/// empty when one can. REQUIRES: the row is ranked.
std::string UnselectableReason(const DraftTarget& target, const ControllerTable& table,
                               const ControllerRow& row);

/// A configuration with a personality for each selector. It views the table and the target.
/// REQUIRES: there is a selector, for "LegacyUSBC" one.
PropertyList DraftConfiguration(const DraftTarget& target, const ControllerTable& table,
                                const ConstraintSchema& schema,
                                const std::vector<Selector>& selectors);

/// How many of the rows the check of the type accepts, with any personality of the configuration.
std::size_t CountMatched(const PropertyValue& configuration, TypeSet type,
                         const ControllerTable& table, const std::vector<ControllerRow>& rows);

}  // namespace fernwick::lab
