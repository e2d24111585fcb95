// The definitions that fmt's headers declare, for the packages that ship the headers alone.
#include <fmt/format-inl.h>

namespace fmt::detail {

template FMT_API auto thousands_sep_impl<char>(locale_ref) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl<char>(locale_ref) -> char;

}  // namespace fmt::detail
