#include "text/json_size.h"

#include <vector>

#include "text/json.h"

namespace tavrelon::text {

namespace {

constexpr qsizetype largestDocument = 64LL * 1024 * 1024;  // bytes
constexpr qsizetype mostValues = 1'000'000;
constexpr qsizetype mostKeys = 1'000;

/// Follows a document without building it, and stops where it grows too large. What is no JSON is not its concern.
class SizeCheck : public nlohmann::json_sax<Json> {
 public:
    bool tooLarge() const { return tooLarge_; }

    bool null() override { return value(); }
    bool boolean(bool) override { return value(); }
    bool number_integer(number_integer_t) override { return value(); }
    bool number_unsigned(number_unsigned_t) override { return value(); }
    bool number_float(number_float_t, const string_t&) override { return value(); }
    bool string(string_t&) override { return value(); }
    bool binary(binary_t&) override { return value(); }
    bool start_object(std::size_t) override { return open(); }
    bool key(string_t&) override { return within(++keys_.back() <= mostKeys); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(); }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override { return false; }

 private:
    bool within(bool fits) {
        tooLarge_ = !fits;
        return fits;
    }
    bool value() { return within(++values_ <= mostValues); }
    bool open() {
        keys_.push_back(0);
        return value();
    }
    bool close() {
        keys_.pop_back();
        return true;
    }

    bool tooLarge_ = false;
    qsizetype values_ = 0;
    std::vector<qsizetype> keys_;  ///< of each object and array that is open
};

}  // namespace

bool isOpenableJson(QByteArrayView bytes) {
    if (bytes.size() > largestDocument)
        return false;
    SizeCheck check;
    Json::sax_parse(bytes.begin(), bytes.end(), &check);
    return !check.tooLarge();
}

}  // namespace tavrelon::text
