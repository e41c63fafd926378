// SPDX-License-Identifier: MIT
#include "format_table.h"

#include <algorithm>
#include <fmt/format.h>

namespace umbrixlib::test {

namespace {

constexpr std::size_t kLine = 120;

/// What the files of one format came to.
struct Row {
    std::string format;
    std::size_t exact = 0;
    std::size_t rounded = 0;
    std::size_t refused = 0;
    std::vector<std::string> taken_kinds{}; ///< Each once, in the order of the index.
};

std::vector<Row> rows_of(std::vector<Variant> const& variants, std::vector<Result> const& results)
{
    std::vector<Row> rows;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        Variant const& variant = variants[i];
        auto row = std::find_if(rows.begin(), rows.end(),
                                [&](Row const& each) { return each.format == variant.format; });
        if (row == rows.end()) {
            row = rows.insert(rows.end(), Row{variant.format});
        }
        ++(!results[i].taken ? row->refused : results[i].difference == 0 ? row->exact : row->rounded);
        auto& kinds = row->taken_kinds;
        if (results[i].taken && std::find(kinds.begin(), kinds.end(), variant.what) == kinds.end()) {
            kinds.push_back(variant.what);
        }
    }
    return rows;
}

std::string counts_of(Row const& row)
{
    return fmt::format("| {} | {} | {} | {} |\n", row.format, row.exact, row.rounded, row.refused);
}

/// A paragraph in lines of at most 120 letters.
std::string wrapped(std::string const& text)
{
    std::string lines;
    std::size_t start = 0;
    while (text.size() - start > kLine) {
        std::size_t const end = text.rfind(' ', start + kLine);
        lines += text.substr(start, end - start) + "\n";
        start = end + 1;
    }
    return lines + text.substr(start) + "\n";
}

std::string kinds_of(Row const& row)
{
    std::string list;
    for (std::string const& kind : row.taken_kinds) {
        list += (list.empty() ? "" : "; ") + kind;
    }
    return list;
}

} // namespace

std::string format_table(std::vector<Variant> const& variants, std::vector<Result> const& results)
{
    std::vector<Row> const rows = rows_of(variants, results);
    Row all{"all"};
    std::string counts;
    std::string taken;
    for (Row const& row : rows) {
        counts += counts_of(row);
        all.exact += row.exact;
        all.rounded += row.rounded;
        all.refused += row.refused;
        if (!row.taken_kinds.empty()) {
            taken += "\n" + wrapped(fmt::format("**{}**: {}.", row.format, kinds_of(row)));
        }
    }
    std::string refused;
    std::string remarks;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        Variant const& variant = variants[i];
        if (!results[i].taken) {
            refused += fmt::format("| {} | {} | {} |\n", variant.format, variant.what, results[i].sentence);
        }
        if (!variant.remark.empty()) {
            remarks += fmt::format("| {} | {} | {} |\n", variant.format, variant.what, variant.remark);
        }
    }
    return fmt::format("| format | equal | within rounding | refused by name |\n| --- | --- | --- | --- |\n"
                       "{}{}\n### What is taken\n{}\n### What is refused\n\n"
                       "| format | what | sentence |\n| --- | --- | --- |\n{}\n"
                       "### Remarks\n\nWhat is not as one might think, and where programs disagree.\n\n"
                       "| format | what | remark |\n| --- | --- | --- |\n{}",
                       counts, counts_of(all), taken, refused, remarks);
}

} // namespace umbrixlib::test
