// 128-bit integers, a language extension of both compilers the program is built with.
#pragma once

namespace zorvel {

__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

}  // namespace zorvel
