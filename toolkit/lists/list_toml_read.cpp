// SPDX-License-Identifier: MIT
#include "toolkit/lists/list_toml.h"

#include "toolkit/base/failure.h"
#include "toolkit/settings/toml_reading_internal.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <toml++/toml.h>

namespace umbrixlib::toolkit {

namespace {

namespace fs = std::filesystem;

std::optional<std::uint32_t> hexadecimal(std::string_view digits)
{
    std::uint32_t value = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    bool const whole = error == std::errc() && end == digits.data() + digits.size();
    return whole ? std::optional(value) : std::nullopt;
}

std::string with_bytes(TomlEntry const& value, std::string const& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        std::string_view const digits = std::string_view(text).substr(i + 1, 2);
        std::optional<std::uint32_t> const byte = hexadecimal(digits);
        if (!byte || digits.size() != 2) {
            value.refuse("a % without two hexadecimal digits", "write %25 for a percent sign");
        }
        result += static_cast<char>(*byte);
        i += 2;
    }
    return result;
}

void read(TomlEntry const& value, std::string& text)
{
    constexpr char const* kRemedy = "give a text in quotes, or { bytes = \"...\" }";
    if (auto const plain = value.node.value_exact<std::string>()) {
        text = *plain;
    } else {
        toml::table const* const table = value.node.as_table();
        auto const bytes = table != nullptr && table->size() == 1
                               ? table->at_path("bytes").value_exact<std::string>()
                               : std::nullopt;
        if (!bytes) {
            value.refuse("it is not a text", kRemedy);
        }
        text = with_bytes(value, *bytes);
    }
    if (text.find('\0') != std::string::npos) {
        value.refuse("it holds a zero byte, which no list can", "take it out");
    }
}

void read(TomlEntry const& value, float& number)
{
    if (auto const text = value.node.value_exact<std::string>()) {
        std::optional<std::uint32_t> const bits =
            text->size() == 10 && text->starts_with("0x") ? hexadecimal(text->substr(2)) : std::nullopt;
        if (!bits) {
            value.refuse("it is not a number", "give one, or the bits of one as \"0x7FC00001\"");
        }
        number = std::bit_cast<float>(*bits);
        return;
    }
    std::optional<double> const found = value.node.is_number() ? value.node.value<double>() : std::nullopt;
    if (!found) {
        value.refuse("it is not a number", "give one");
    }
    auto const narrowed = static_cast<float>(*found);
    if (std::isfinite(*found) && !std::isfinite(narrowed)) {
        value.refuse("it is too large", "give a smaller number, or inf");
    }
    number = std::isnan(*found) ? std::numeric_limits<float>::quiet_NaN() : narrowed;
}

void read(TomlEntry const& value, bool& flag)
{
    auto const found = value.node.value_exact<bool>();
    if (!found) {
        value.refuse("it is neither true nor false", "give one of them");
    }
    flag = *found;
}

template <typename T>
void read(TomlEntry const& value, T& number)
{
    using Limits = std::numeric_limits<std::conditional_t<sizeof(T) == 1, std::uint8_t, std::int32_t>>;
    auto const found = value.node.value_exact<std::int64_t>();
    if (!found || *found < Limits::min() || *found > Limits::max()) {
        value.refuse(
            "it is not a whole number of its range",
            fmt::format("give {} to {}", static_cast<int>(Limits::min()), static_cast<int>(Limits::max())));
    }
    number = static_cast<T>(*found);
}

/// Takes the fields of one table one by one, and tells which are missing or unknown.
class Fields {
public:
    Fields(std::string subject, toml::table const& table) : subject_(std::move(subject)), table_(table) {}

    template <typename T>
    void take(char const* name, T& to)
    {
        toml::node const* const node = table_.get(name);
        if (node == nullptr) {
            throw Failure(Fault::kNoExportedList,
                          fmt::format("{} (line {}): {}", subject_, table_.source().begin.line, name),
                          "it is missing");
        }
        known_.insert_or_assign(name, true);
        read(TomlEntry{fmt::format("{}: {}", subject_, name), *node}, to);
    }

    /// The tables of a list of them, which may be missing.
    std::vector<toml::table const*> take_tables(char const* name)
    {
        known_.insert_or_assign(name, true);
        toml::node const* const node = table_.get(name);
        std::vector<toml::table const*> tables;
        if (node == nullptr) {
            return tables;
        }
        TomlEntry const value{fmt::format("{}: {}", subject_, name), *node};
        if (!node->is_array()) {
            value.refuse(Fault::kNoExportedList, "it is not a list of tables");
        }
        for (toml::node const& each : *node->as_array()) {
            if (!each.is_table()) {
                value.refuse(Fault::kNoExportedList, "it is not a list of tables");
            }
            tables.push_back(each.as_table());
        }
        return tables;
    }

    void refuse_others() const
    {
        for (auto const& [key, node] : table_) {
            if (!known_.contains(key)) {
                TomlEntry{fmt::format("{}: {}", subject_, key.str()), node}.refuse(Fault::kNoExportedList,
                                                                                   "there is no such field");
            }
        }
    }

private:
    std::string subject_;
    toml::table const& table_;
    toml::table known_;
};

#define UMBRIX_TAKE(type, name, offset) fields.take(#name, record.name);

n_layer layer_of(std::string const& subject, toml::table const& table)
{
    n_layer record;
    Fields fields(subject, table);
    fields.take("filename", record.filename);
    fields.take("name", record.name);
    UMBRIX_LAYER_FIELDS(UMBRIX_TAKE)
    fields.refuse_others();
    return record;
}

umbrix_node job_of(std::string const& subject, toml::table const& table)
{
    umbrix_node record;
    Fields fields(subject, table);
    fields.take("filename", record.filename);
    fields.take("search_str", record.search_str);
    UMBRIX_DATA_FIELDS(UMBRIX_TAKE, UMBRIX_TAKE)
    int number = 0;
    for (toml::table const* layer : fields.take_tables("layer")) {
        record.layers.Add(layer_of(fmt::format("{}: layer {}", subject, ++number), *layer));
    }
    fields.refuse_others();
    return record;
}

toml::table parse(fs::path const& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string const text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    return parse_toml(text, file.string(), Fault::kNoExportedList);
}

} // namespace

void read_toml(fs::path const& file, umbrix_list& list)
{
    toml::table const top = parse(file);
    if (!top.contains("job")) {
        throw Failure(Fault::kNoExportedList, file.string(), "it has no jobs");
    }
    Fields fields(file.string(), top);
    std::vector<toml::table const*> const jobs = fields.take_tables("job");
    fields.refuse_others();
    int number = 0;
    for (toml::table const* job : jobs) {
        list.items.Add(job_of(fmt::format("{}: job {}", file.string(), ++number), *job));
    }
}

} // namespace umbrixlib::toolkit
