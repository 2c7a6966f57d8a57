#include "plan/ValueReading.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/Strings.h"

namespace korvex {

namespace {

constexpr std::string_view countMember = "count";
constexpr std::string_view lengthMember = "length";

std::int64_t characterCount(std::string_view text) {
  if (!isValidUTF8(text)) {
    std::int64_t count = 0;
    for (std::size_t end = text.size(); end > 0; end -= lengthOfCharacterBefore(text, end)) ++count;
    return count;
  }
  return std::count_if(text.begin(), text.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
}

ValueView sizeValue(std::size_t size) { return ValueView::ofInteger(static_cast<std::int64_t>(size)); }

std::nullopt_t refuse(ValueFailure& failure, PlanErrorCode code, std::string message) {
  failure = {code, std::move(message)};
  return std::nullopt;
}

std::string_view nameOf(const ModelClass& modelClass) {
  return modelClass.name.empty() ? std::string_view("the object's class") : std::string_view(modelClass.name);
}

template <typename Scalar>
std::optional<ValueView> viewOf(Scalar scalar) {
  if constexpr (std::is_floating_point_v<Scalar>) {
    return ValueView::ofReal(static_cast<double>(scalar));
  } else if constexpr (std::is_same_v<Scalar, bool>) {
    return ValueView::ofInteger(scalar ? 1 : 0);
  } else {
    return std::in_range<std::int64_t>(scalar) ? std::optional(ValueView::ofInteger(static_cast<std::int64_t>(scalar)))
                                               : std::nullopt;
  }
}

template <typename Scalar>
bool viewAs(const NumberObject& number, std::optional<ValueView>& view) {
  const std::optional<Scalar> scalar = number.value<Scalar>();
  if (scalar) view = viewOf(*scalar);
  return scalar.has_value();
}

// Absent for an unsigned integer that exceeds SQL's integers.
std::optional<ValueView> viewOf(const NumberObject& number) {
  std::optional<ValueView> view;
  static_cast<void>(viewAs<std::int32_t>(number, view) || viewAs<std::int64_t>(number, view) ||
                    viewAs<double>(number, view) || viewAs<bool>(number, view) || viewAs<float>(number, view) ||
                    viewAs<signed char>(number, view) || viewAs<unsigned char>(number, view) ||
                    viewAs<short>(number, view) || viewAs<unsigned short>(number, view) ||
                    viewAs<unsigned>(number, view) || viewAs<unsigned long long>(number, view));
  return view;
}

std::optional<ReadValue> numberOf(const NumberObject& number, std::string_view property, ValueFailure& failure) {
  if (const std::optional<ValueView> view = viewOf(number)) return ReadValue{*view};
  return refuse(failure, PlanErrorCode::IntegerOutOfRange,
                "property " + quoted(property) + " is beyond the integers of SQL, which end at 9223372036854775807");
}

std::optional<ReadValue> fieldValue(ValueScope& scope, const ModelObject& object, const ModelField& field,
                                    std::string_view property, ValueFailure& failure) {
  if (const OptionalNumber scalar = getScalarField(object, field)) return numberOf(*scalar, property, failure);
  const ObjectValue value = getObjectField(object, field);
  if (const auto* text = std::get_if<std::string_view>(&value)) return ReadValue{ValueView::ofText(*text)};
  if (const auto* number = std::get_if<NumberObject>(&value)) return numberOf(*number, property, failure);
  if (const auto* binary = std::get_if<BinaryView>(&value)) return ReadValue{ValueView::ofBlob(binary->bytes)};
  if (const auto* other = std::get_if<std::shared_ptr<ModelObject>>(&value)) {
    scope.objects.push_back(*other);
    return ReadValue{ValueView::ofObject(**other)};
  }
  const bool readable = field.text.get || field.number.get || field.binary.get || field.object.get;
  if (readable) return ReadValue{};
  return refuse(failure, PlanErrorCode::UnknownProperty,
                "property " + quoted(property) + " has a type that cannot be read");
}

// All packed properties of an object as one value; null if none of them has a value.
std::optional<ReadValue> packedValue(ValueScope& scope, const ModelObject& object, const QXDAOPack& pack) {
  std::string bytes = pack.packWithObject(&object).value_or(std::string());
  if (bytes.empty()) return ReadValue{};
  return ReadValue{ValueView::ofBlob(scope.packed.emplace_back(std::move(bytes))), pack.crypted()};
}

std::optional<ReadValue> propertyOf(ValueScope& scope, const ModelObject& object, std::string_view name, ValueUse use,
                                    ValueFailure& failure) {
  const ModelClass& modelClass = getClass(object);
  if (const ModelField* field = fieldOfProperty(modelClass, name)) {
    std::optional<ReadValue> read = fieldValue(scope, object, *field, name, failure);
    if (read && use == ValueUse::Binding) read->encrypted = scope.set->encrypts(modelClass, name);
    return read;
  }
  const QXDAOPack* pack = use == ValueUse::Binding ? scope.set->pack(name) : nullptr;
  if (pack) return packedValue(scope, object, *pack);
  const bool computed = getProperty(modelClass, name) != nullptr;
  return refuse(failure, PlanErrorCode::UnknownProperty,
                std::string(nameOf(modelClass)) + (computed ? " computes property " : " has no property ") +
                    quoted(name) + (computed ? ", which cannot be read" : ""));
}

std::optional<ReadValue> noMember(const ValueView& value, std::string_view name, ValueFailure& failure) {
  return refuse(failure, PlanErrorCode::WrongType, std::string(nameOf(value.type())) + " has no " + quoted(name));
}

}  // namespace

std::optional<ReadValue> readMember(ValueScope& scope, const ValueView& value, std::string_view name, ValueUse use,
                                    ValueFailure& failure) {
  const bool counts = name == countMember;
  const bool measures = name == lengthMember;
  switch (value.type()) {
    case ValueType::Null:
      return ReadValue{use == ValueUse::Expression && (counts || measures) ? sizeValue(0) : ValueView()};
    case ValueType::List:
      if (counts) return ReadValue{sizeValue(value.list().size())};
      break;
    case ValueType::Text:
      if (measures) return ReadValue{ValueView::ofInteger(characterCount(value.bytes()))};
      break;
    case ValueType::Blob:
      if (measures) return ReadValue{sizeValue(value.bytes().size())};
      break;
    case ValueType::Dictionary: {
      if (counts && use == ValueUse::Expression) return ReadValue{sizeValue(value.dictionary().size())};
      const Value* entry = value.dictionary().find(name);
      return ReadValue{entry ? entry->view() : ValueView()};
    }
    case ValueType::Object:
      return propertyOf(scope, value.object(), name, use, failure);
    default:
      break;
  }
  return noMember(value, name, failure);
}

std::optional<ReadValue> readPath(ValueScope& scope, const ValueView& value, std::string_view path, ValueUse use,
                                  ValueFailure& failure) {
  std::optional<ReadValue> read = ReadValue{value};
  while (read && !path.empty()) {
    const std::size_t dot = std::min(path.find('.'), path.size());
    read = readMember(scope, read->value, path.substr(0, dot), use, failure);
    path.remove_prefix(std::min(dot + 1, path.size()));
  }
  return read;
}

}  // namespace korvex
