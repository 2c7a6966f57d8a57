// The formats beside ours, each used as its own documents show it. protobuf has its own message in
// the place of the Person; the others write names and types along and find the values by name.
#include <bson/bson.h>
#include <flatbuffers/flexbuffers.h>

#include <msgpack.hpp>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>
#include <vector>

#include "Person.pb.h"
#include "benchmarks/PackFormat.h"
#include "korvex/NumberObject.h"
#include "korvex/QXDAOPackReader.h"

namespace korvex::benchmarks {

namespace {

struct Protobuf {
  using Object = PersonMessage;

  static PersonMessage somebody() {
    const Person person = benchmarks::somebody();
    PersonMessage message;
    message.set_company(*person.company);
    message.set_job_title(*person.jobTitle);
    message.set_website(person.website);
    message.set_account_number(person.accountNumber);
    message.set_visits(person.visits);
    message.set_rating(person.rating);
    message.set_subscribed(person.subscribed);
    message.set_discount(*person.discount->value<double>());
    return message;
  }

  static bool isSomebody(const PersonMessage& message) {
    return message.SerializeAsString() == somebody().SerializeAsString();
  }

  static std::string pack(const PersonMessage& message) {
    std::string bytes;
    require(message.SerializeToString(&bytes), "protobuf cannot pack");
    return bytes;
  }

  static void unpack(PersonMessage& message, const std::string& bytes) {
    require(message.ParseFromString(bytes), "protobuf cannot unpack");
  }
};

struct MessagePack : PersonFormat {
  static msgpack::sbuffer pack(const Person& person) {
    msgpack::sbuffer buffer;
    msgpack::packer packer(buffer);
    const auto property = [&](std::string_view name, const auto& value) {
      packer.pack(name);
      packer.pack(value);
    };
    packer.pack_map(8);
    property("accountNumber", person.accountNumber);
    property("company", *person.company);
    property("discount", *person.discount->value<double>());
    property("jobTitle", *person.jobTitle);
    property("rating", person.rating);
    property("subscribed", person.subscribed);
    property("visits", person.visits);
    property("website", person.website);
    return buffer;
  }

  static void unpack(Person& person, const msgpack::sbuffer& bytes) {
    const msgpack::object_handle handle = msgpack::unpack(bytes.data(), bytes.size());
    const msgpack::object_map& map = handle->via.map;
    for (const msgpack::object_kv* entry = map.ptr; entry != map.ptr + map.size; ++entry) {
      read(person, entry->key.as<std::string_view>(), entry->val);
    }
  }

 private:
  static void read(Person& person, std::string_view name, const msgpack::object& value) {
    if (name == "accountNumber") person.accountNumber = value.as<long long>();
    if (name == "company") person.company = value.as<std::string>();
    if (name == "discount") person.discount = NumberObject(value.as<double>());
    if (name == "jobTitle") person.jobTitle = value.as<std::string>();
    if (name == "rating") person.rating = value.as<double>();
    if (name == "subscribed") person.subscribed = value.as<bool>();
    if (name == "visits") person.visits = value.as<int>();
    if (name == "website") person.website = value.as<std::string>();
  }
};

struct Bson : PersonFormat {
  class Document {
   public:
    Document() : _document(bson_new()) {}
    Document(Document&& other) noexcept : _document(std::exchange(other._document, nullptr)) {}
    ~Document() { bson_destroy(_document); }
    [[nodiscard]] bson_t* get() const { return _document; }

   private:
    bson_t* _document;
  };

  static Document pack(const Person& person) {
    Document bytes;
    bson_t* document = bytes.get();
    BSON_APPEND_INT64(document, "accountNumber", person.accountNumber);
    appendText(document, "company", *person.company);
    BSON_APPEND_DOUBLE(document, "discount", *person.discount->value<double>());
    appendText(document, "jobTitle", *person.jobTitle);
    BSON_APPEND_DOUBLE(document, "rating", person.rating);
    BSON_APPEND_BOOL(document, "subscribed", person.subscribed);
    BSON_APPEND_INT32(document, "visits", person.visits);
    appendText(document, "website", person.website);
    return bytes;
  }

  static void unpack(Person& person, const Document& bytes) {
    bson_iter_t at;
    require(bson_iter_init(&at, bytes.get()), "libbson cannot unpack");
    while (bson_iter_next(&at)) read(person, bson_iter_key(&at), at);
  }

 private:
  static void appendText(bson_t* document, std::string_view name, std::string_view text) {
    bson_append_utf8(document, name.data(), static_cast<int>(name.size()), text.data(), static_cast<int>(text.size()));
  }

  static std::string textAt(const bson_iter_t& at) {
    std::uint32_t length = 0;
    const char* text = bson_iter_utf8(&at, &length);
    return {text, length};
  }

  static void read(Person& person, std::string_view name, const bson_iter_t& at) {
    if (name == "accountNumber") person.accountNumber = bson_iter_int64(&at);
    if (name == "company") person.company = textAt(at);
    if (name == "discount") person.discount = NumberObject(bson_iter_double(&at));
    if (name == "jobTitle") person.jobTitle = textAt(at);
    if (name == "rating") person.rating = bson_iter_double(&at);
    if (name == "subscribed") person.subscribed = bson_iter_bool(&at);
    if (name == "visits") person.visits = bson_iter_int32(&at);
    if (name == "website") person.website = textAt(at);
  }
};

struct FlexBuffers : PersonFormat {
  static std::vector<std::uint8_t> pack(const Person& person) {
    flexbuffers::Builder builder;
    builder.Map([&] {
      builder.Int("accountNumber", person.accountNumber);
      builder.String("company", *person.company);
      builder.Double("discount", *person.discount->value<double>());
      builder.String("jobTitle", *person.jobTitle);
      builder.Double("rating", person.rating);
      builder.Bool("subscribed", person.subscribed);
      builder.Int("visits", person.visits);
      builder.String("website", person.website);
    });
    builder.Finish();
    return builder.GetBuffer();
  }

  static void unpack(Person& person, const std::vector<std::uint8_t>& bytes) {
    const flexbuffers::Map map = flexbuffers::GetRoot(bytes).AsMap();
    person.accountNumber = map["accountNumber"].AsInt64();
    person.company = map["company"].AsString().str();
    person.discount = NumberObject(map["discount"].AsDouble());
    person.jobTitle = map["jobTitle"].AsString().str();
    person.rating = map["rating"].AsDouble();
    person.subscribed = map["subscribed"].AsBool();
    person.visits = map["visits"].AsInt32();
    person.website = map["website"].AsString().str();
  }
};

struct Cbor : PersonFormat {
  static std::vector<std::uint8_t> pack(const Person& person) {
    return nlohmann::json::to_cbor({
        {"accountNumber", person.accountNumber},
        {"company", *person.company},
        {"discount", *person.discount->value<double>()},
        {"jobTitle", *person.jobTitle},
        {"rating", person.rating},
        {"subscribed", person.subscribed},
        {"visits", person.visits},
        {"website", person.website},
    });
  }

  static void unpack(Person& person, const std::vector<std::uint8_t>& bytes) {
    const nlohmann::json value = nlohmann::json::from_cbor(bytes);
    value.at("accountNumber").get_to(person.accountNumber);
    person.company = value.at("company").get<std::string>();
    person.discount = NumberObject(value.at("discount").get<double>());
    person.jobTitle = value.at("jobTitle").get<std::string>();
    value.at("rating").get_to(person.rating);
    value.at("subscribed").get_to(person.subscribed);
    value.at("visits").get_to(person.visits);
    value.at("website").get_to(person.website);
  }
};

}  // namespace

void registerPackPeers() {
  registerFormat<Protobuf>("protobuf");
  registerFormat<MessagePack>("MessagePack");
  registerFormat<Bson>("BSON");
  registerFormat<FlexBuffers>("FlexBuffers");
  registerFormat<Cbor>("CBOR");
}

}  // namespace korvex::benchmarks
