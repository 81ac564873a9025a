#pragma once

namespace kesu::catalogue {

/// Calls every operation once as a host writes it, without attributes, in the order of the contract. By place i an
/// object is the text "a<i>" (4.5 where a number is meant), an integer 40 + i, seconds 100.9 + i, a flag true and the
/// point (37.774899, -122.419403).
void callEverythingNaturally();

}  // namespace kesu::catalogue
