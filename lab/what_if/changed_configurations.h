#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "lab/support/configuration_file.h"
#include "lab/support/messages.h"
#include "lab/what_if/changes.h"
#include "personality/configuration.h"
#include "value/property_list_reader.h"

namespace fernwick::lab {

/// The configurations of a payload with changes of personalities. Each is read once, when a run
/// first needs it, and stays in memory: one for each file, however identifiers name it ("Zed-42"
/// and "Zed-42/"), and one more for each board that a change names. One that cannot be read is read
/// again by the next run. For use by several threads.
class ChangedConfigurations {
 public:
  /// REQUIRES: the changes outlive this and all that its loaders return.
  explicit ChangedConfigurations(const Changes& changes) : changes_(changes) {}

  /// What a run loads configurations with. They view this object. Where a change cannot be applied,
  /// since it is for another board or there is no such type or personality, the run has no
  /// configuration, and `refusal` is why.
  ConfigurationLoader Loader(std::optional<Error>& refusal);

  /// The same for many computers: a change that cannot be applied is left out. `applied` becomes
  /// those of the configuration, by their index among the changes of personalities.
  ConfigurationLoader Loader(std::vector<bool>& applied);

  /// The same file with the locations of its values, without the changes; null when it can no
  /// longer be read. An error, whose message begins with the path, for lack of memory or
  /// descriptors. Read once, when it is first asked for. REQUIRES: it was there.
  Result<const ConfigurationFile*, LabError> Located(const std::string& board,
                                                     const std::string& personalitiesDirectory);

 private:
  struct Document {
    PropertyList list;  // as it was read
    Arena arena = {};   // of what is changed
    PropertyValue value = {};
    std::vector<bool> applied = {};  // the changes, by their index
  };

  // The directory, and the board if a change names it.
  using DocumentKey = std::pair<std::string, std::string>;

  DocumentKey KeyOf(const std::string& board, const std::string& personalitiesDirectory) const;
  const Document* FindDocument(const DocumentKey& key);
  ConfigurationLoader LoaderFor(std::optional<Error>* refusal, std::vector<bool>* applied);
  Document Change(PropertyList list, const std::string& board, std::optional<Error>& fault) const;

  const Changes& changes_;
  std::mutex mutex_;
  std::map<DocumentKey, Document> documents_;
  std::map<std::string, ConfigurationFile> located_;
};

}  // namespace fernwick::lab
