#include "harness/chance.h"

namespace quillpost::testing {

ChanceRun& chanceRun() {
  static ChanceRun run;
  return run;
}

}  // namespace quillpost::testing
