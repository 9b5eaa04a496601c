#pragma once
// One row of a keyed data source, as lists and spinners show them: a key
// that names the row, and its fields by name.

#include <map>
#include <string>
#include <vector>

#include "platform/Value.h"

namespace qds {

struct DataRow {
  std::string key;
  std::map<std::string, Value> fields;
  // The field as text; "" when the row has no field of that name.
  std::string Field(const std::string& name) const {
    const auto it = fields.find(name);
    return it == fields.end() ? std::string() : it->second.AsString();
  }
};

using DataRows = std::vector<DataRow>;

}  // namespace qds
