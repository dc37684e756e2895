// The one set of settings.
#include "runtime/settings.h"

namespace host {

Settings& settings() {
  static Settings chosen;
  return chosen;
}

}  // namespace host
