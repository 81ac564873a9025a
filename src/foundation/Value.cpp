#include <kesu/foundation/Value.h>
