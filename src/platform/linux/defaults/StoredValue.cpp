#include "platform/linux/defaults/StoredValue.h"

#include <limits>

#include "foundation/PropertyList.h"

namespace kesu {
namespace {

// The column "kind". Written to disk: never renumber.
enum class StoredKind : int {
  Bool = 1,
  Integer = 2,
  Real = 3,
  Text = 4,
  Data = 5,
  Date = 6,
  PropertyList = 7,
  ArrayInParts = 8
};

StoredKind storedKind(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Bool:
      return StoredKind::Bool;
    case Value::Kind::Integer:
      return StoredKind::Integer;
    case Value::Kind::Real:
      return StoredKind::Real;
    case Value::Kind::Text:
      return StoredKind::Text;
    case Value::Kind::Data:
      return StoredKind::Data;
    case Value::Kind::Date:
      return StoredKind::Date;
    case Value::Kind::Null:
    case Value::Kind::Array:
    case Value::Kind::Dictionary:
      break;
  }
  return StoredKind::PropertyList;
}

void bindContent(sqlite3_stmt* statement, int position, const Value& value, const std::string& listText) {
  if (const bool* flag = value.boolean()) {
    sqlite3_bind_int(statement, position, *flag ? 1 : 0);
  } else if (const std::int64_t* integer = value.integer()) {
    sqlite3_bind_int64(statement, position, *integer);
  } else if (const double* real = value.real()) {
    sqlite3_bind_double(statement, position, *real);  // NaN becomes NULL.
  } else if (const Date* date = value.date()) {
    sqlite3_bind_double(statement, position, date->secondsSince1970);
  } else if (const Data* data = value.data()) {
    sqlite3_bind_blob64(statement, position, data->data(), data->size(), SQLITE_STATIC);  // Empty becomes NULL.
  } else {
    bindText(statement, position, value.text() != nullptr ? *value.text() : listText);
  }
}

// NULL stands for NaN.
double columnReal(sqlite3_stmt* row, int column) {
  return sqlite3_column_type(row, column) == SQLITE_NULL ? std::numeric_limits<double>::quiet_NaN()
                                                         : sqlite3_column_double(row, column);
}

}  // namespace

bool isContainer(const Value& value) {
  return value.array() != nullptr || value.dictionary() != nullptr;
}

void bindText(sqlite3_stmt* statement, int position, std::string_view text) {
  // A null pointer would be stored as NULL, also for an empty text.
  const char* bytes = text.data() != nullptr ? text.data() : "";
  sqlite3_bind_text64(statement, position, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void bindValue(sqlite3_stmt* statement, int kindPosition, const Value& value, const std::string& listText) {
  sqlite3_bind_int(statement, kindPosition, static_cast<int>(storedKind(value)));
  bindContent(statement, kindPosition + 1, value, listText);
}

void bindParts(sqlite3_stmt* statement, int kindPosition, std::int64_t stamp) {
  sqlite3_bind_int(statement, kindPosition, static_cast<int>(StoredKind::ArrayInParts));
  sqlite3_bind_int64(statement, kindPosition + 1, stamp);
}

bool columnIsInParts(sqlite3_stmt* row, int kindColumn) {
  return sqlite3_column_int(row, kindColumn) == static_cast<int>(StoredKind::ArrayInParts);
}

bool columnIsContainer(sqlite3_stmt* row, int kindColumn) {
  return columnIsInParts(row, kindColumn) ||
         sqlite3_column_int(row, kindColumn) == static_cast<int>(StoredKind::PropertyList);
}

std::string_view columnBytes(sqlite3_stmt* row, int column) {
  const void* bytes = sqlite3_column_blob(row, column);
  return {static_cast<const char*>(bytes),
          bytes != nullptr ? static_cast<std::size_t>(sqlite3_column_bytes(row, column)) : 0};
}

std::optional<Value> columnValue(sqlite3_stmt* row, int kindColumn) {
  const int column = kindColumn + 1;
  // Bytes are asked for only where bytes are stored: asking turns a number into text, in place.
  switch (static_cast<StoredKind>(sqlite3_column_int(row, kindColumn))) {
    case StoredKind::Bool:
      return Value(sqlite3_column_int(row, column) != 0);
    case StoredKind::Integer:
      return Value(std::int64_t{sqlite3_column_int64(row, column)});
    case StoredKind::Real:
      return Value(columnReal(row, column));
    case StoredKind::Text:
      return Value(columnBytes(row, column));
    case StoredKind::Data: {
      const std::string_view bytes = columnBytes(row, column);
      return Value(Data(bytes.begin(), bytes.end()));
    }
    case StoredKind::Date:
      return Value(Date{columnReal(row, column)});
    case StoredKind::PropertyList:
      return parsePropertyList(columnBytes(row, column), PropertyListForm::Escaped);
    case StoredKind::ArrayInParts:
      return Value(Array());
  }
  return std::nullopt;
}

}  // namespace kesu
