// What happens when the library is loaded.
#include "filters/families.h"
#include "frame/table.h"

namespace {

// The one load-time initialiser. Everything else that lives outside a call is constant-initialised,
// so that the order of initialisers does not matter.
const bool loaded = [] {
    undula::fillTable();
    undula::buildFamilies();
    return true;
}();

}  // namespace
