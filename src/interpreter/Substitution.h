// Text substitution: the passes that replace #string#, %numeric%, ~collectable~ and $function$
// references in a parameter by their values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarve {

struct Game;

// A text being built by substitution stops growing here: what goes past it is cut off and
// logged. With the bounds on variables (Variables.h), no script can take all the memory there
// is; a line may still hold many references to the longest variables.
inline constexpr std::size_t kMaxSubstitutedBytes = std::size_t{16} << 20;
// Building a long text costs as much as running a statement for every this many bytes of it,
// so that a loop over long texts meets the statement limit as other loops do.
inline constexpr std::size_t kSubstitutedBytesPerStatement = 1024;

enum class SubstitutionKind { kString = 1, kFunction = 2, kNumeric = 3, kCollectable = 4 };

// One pass over `text` for one delimiter.
std::string Substitute(Game& game, std::string_view text, char delimiter, SubstitutionKind kind);

// The four passes, in their fixed order: string variables, numeric variables, collectables,
// functions.
std::string SubstituteAll(Game& game, std::string_view text);

}  // namespace tarve
