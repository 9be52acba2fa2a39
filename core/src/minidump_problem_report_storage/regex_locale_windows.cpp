// Word characters of the report reader on Windows: Boost's expressions ask
// the system, which classifies by Unicode already, so nothing is to be done.
#include "regex_text.h"

namespace norvane_1 {
namespace internal {

void imbueReaderLocale(boost::wregex&) {}

}  // namespace internal
}  // namespace norvane_1
