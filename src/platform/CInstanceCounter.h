// The place in the class tree where counting of live objects belongs. Nothing is counted.
#pragma once

namespace calvera::debug {

template <typename T>
class CInstanceCounter {};

} // namespace calvera::debug
