#include "foundation/Json.h"

#include <rapidjson/encodedstream.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <rapidjson/writer.h>

#include <cmath>

#include "foundation/NumberText.h"
#include "foundation/Text.h"

namespace kesu {
namespace {

using rapidjson::SizeType;

// What the writer writes to: the caller's string.
struct StringStream {
  using Ch = char;
  void Put(char character) { text.push_back(character); }
  void Flush() {}
  std::string& text;
};

using Writer = rapidjson::Writer<StringStream, rapidjson::UTF8<>, rapidjson::UTF8<>, rapidjson::CrtAllocator,
                                 rapidjson::kWriteValidateEncodingFlag>;

JsonStatus write(Writer& writer, const Value& value, std::size_t depth);

JsonStatus okOrBadText(bool written) {
  return written ? JsonStatus::Ok : JsonStatus::BadText;
}

JsonStatus writeReal(Writer& writer, double number) {
  if (!std::isfinite(number)) {
    return JsonStatus::NotValid;
  }
  const std::string text = shortestReal(number);
  writer.RawValue(text.data(), text.size(), rapidjson::kNumberType);
  return JsonStatus::Ok;
}

JsonStatus writeArray(Writer& writer, const Array& array, std::size_t depth) {
  if (depth >= kJsonDepthLimit) {
    return JsonStatus::TooDeep;
  }
  writer.StartArray();
  for (const Value& value : array) {
    const JsonStatus status = write(writer, value, depth + 1);
    if (status != JsonStatus::Ok) {
      return status;
    }
  }
  writer.EndArray();
  return JsonStatus::Ok;
}

JsonStatus writeDictionary(Writer& writer, const Dictionary& dictionary, std::size_t depth) {
  if (depth >= kJsonDepthLimit) {
    return JsonStatus::TooDeep;
  }
  writer.StartObject();
  for (const auto& [key, value] : dictionary) {
    if (!writer.Key(key.data(), static_cast<SizeType>(key.size()))) {
      return JsonStatus::BadText;
    }
    const JsonStatus status = write(writer, value, depth + 1);
    if (status != JsonStatus::Ok) {
      return status;
    }
  }
  writer.EndObject();
  return JsonStatus::Ok;
}

JsonStatus write(Writer& writer, const Value& value, std::size_t depth) {
  switch (value.kind()) {
    case Value::Kind::Null:
      return okOrBadText(writer.Null());
    case Value::Kind::Bool:
      return okOrBadText(writer.Bool(*value.boolean()));
    case Value::Kind::Integer:
      return okOrBadText(writer.Int64(*value.integer()));
    case Value::Kind::Real:
      return writeReal(writer, *value.real());
    case Value::Kind::Text:
      return okOrBadText(writer.String(value.text()->data(), static_cast<SizeType>(value.text()->size())));
    case Value::Kind::Data:
    case Value::Kind::Date:
      return JsonStatus::NotValid;
    case Value::Kind::Array:
      return writeArray(writer, *value.array(), depth);
    case Value::Kind::Dictionary:
      return writeDictionary(writer, *value.dictionary(), depth);
  }
  return JsonStatus::NotValid;
}

template <typename Write>
JsonStatus writeWhole(std::string& out, Write writeRoot) {
  out.clear();
  StringStream stream{out};
  Writer writer(stream);
  const JsonStatus status = writeRoot(writer);
  if (status != JsonStatus::Ok) {
    out.clear();
  }
  return status;
}

// Builds the value from what the parser reports; the parser dictates the names. `false` ends the parsing.
class Builder {
 public:
  bool Null() { return add(Value()); }
  bool Bool(bool flag) { return add(flag); }
  bool Int(int number) { return add(number); }
  bool Uint(unsigned number) { return add(number); }
  bool Int64(std::int64_t number) { return add(number); }
  bool Uint64(std::uint64_t number) { return add(number); }
  bool Double(double number) { return add(number); }
  bool RawNumber(const char*, SizeType, bool) { return false; }  // Never reported with the flags we parse with.

  // The parser lets half of a surrogate pair written as an escape pass.
  bool String(const char* text, SizeType size, bool) {
    const std::string_view view(text, size);
    return isValidUtf8(view) && add(view);
  }
  bool Key(const char* text, SizeType size, bool) {
    keys_.emplace_back(text, size);
    return isValidUtf8(keys_.back());
  }
  bool StartObject() { return open(Dictionary()); }
  bool EndObject(SizeType) { return close(); }
  bool StartArray() { return open(Array()); }
  bool EndArray(SizeType) { return close(); }

  Value takeResult() { return std::move(result_); }

 private:
  bool open(Value container) {
    if (open_.size() >= kJsonDepthLimit) {
      return false;
    }
    open_.push_back(std::move(container));
    return true;
  }

  bool close() {
    Value complete = std::move(open_.back());
    open_.pop_back();
    return add(std::move(complete));
  }

  bool add(Value value) {
    if (open_.empty()) {
      result_ = std::move(value);
    } else if (Array* array = open_.back().array()) {
      array->push_back(std::move(value));
    } else {
      open_.back().dictionary()->set(keys_.back(), std::move(value));
      keys_.pop_back();
    }
    return true;
  }

  std::vector<Value> open_;        // The arrays and dictionaries that are not complete, outermost first.
  std::vector<std::string> keys_;  // The keys whose values are not complete, outermost first.
  Value result_;
};

}  // namespace

JsonStatus writeJson(const Dictionary& dictionary, std::string& out) {
  return writeWhole(out, [&](Writer& writer) { return writeDictionary(writer, dictionary, 0); });
}

JsonStatus writeJson(const Value& value, std::string& out) {
  return writeWhole(out, [&](Writer& writer) { return write(writer, value, 0); });
}

std::optional<Value> parseJson(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    return std::nullopt;  // The parser takes it for the end of the text.
  }
  rapidjson::MemoryStream bytes(text.data(), text.size());
  rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
  rapidjson::Reader reader;
  Builder builder;
  constexpr unsigned kFlags = rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag;
  if (reader.Parse<kFlags>(stream, builder).IsError()) {
    return std::nullopt;
  }
  return builder.takeResult();
}

}  // namespace kesu
