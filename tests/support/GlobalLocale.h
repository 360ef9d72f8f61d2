#pragma once

#include <array>
#include <locale>
#include <string>

namespace vexa::tests {

/// Makes a locale the global locale while the object exists.
class GlobalLocale {
public:
    /// Uses the classic locale with one facet replaced. The locale owns the facet.
    template <class Facet>
    explicit GlobalLocale(Facet* facet) : m_before(std::locale::global(std::locale(std::locale::classic(), facet))) {}
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;
    ~GlobalLocale() { std::locale::global(m_before); }

private:
    std::locale m_before;
};

/// Writes numbers like 1.234.567,5.
struct GroupedNumbers : std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// Only the underscore is white space.
struct UnderscoreForBlank : std::ctype<char> {
    UnderscoreForBlank() : std::ctype<char>(table()) {}

private:
    static const mask* table() {
        static const auto masks = [] {
            std::array<mask, table_size> all{};
            all['_'] = space;
            return all;
        }();
        return masks.data();
    }
};

}  // namespace vexa::tests
