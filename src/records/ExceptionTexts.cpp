#include <kesu/records/Constants.h>

namespace kesu {

constinit const std::string_view k_KesuAppKeyMissingException =
    "KesuAppKey needs to be set via initializeWithKey: method. Log on to " KESU_BUILT_IN_CONSOLE_HOST " to get it.";

constinit const std::string_view k_KesuAppKeyDuplicateException = "KesuAppKey is already set and Kesu is initialized!";

constinit const std::string_view k_KesuLibraryInitializationException =
    "-init is not a valid initializer for Kesu. KesuAppKey needs to be set via initializeWithKey:  "
    "@\"<Your Kesu assigned App Key>\" ";

}  // namespace kesu
