// Word characters of the report reader on POSIX.
//
// Boost's expressions classify wide characters through a std::locale; the
// "C" locale knows only ASCII letters, so "[Журнал]" would be no section
// head. The built-in C.UTF-8 locale classifies by Unicode, as Windows does.
#include "regex_text.h"

#include <locale>
#include <stdexcept>

namespace norvane_1 {
namespace internal {
namespace {

std::locale const& readerLocale() {
    static std::locale const locale = [] {
        try {
            return std::locale("C.UTF-8");
        } catch (std::runtime_error const&) {
            return std::locale();
        }
    }();
    return locale;
}

}  // namespace

void imbueReaderLocale(boost::wregex& expression) { expression.imbue(readerLocale()); }

}  // namespace internal
}  // namespace norvane_1
