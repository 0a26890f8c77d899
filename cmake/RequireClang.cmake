# g++ 12 miscompiles coroutines: `if (!co_await f())` loses its value, and aggregate temporaries in an awaited call
# are freed twice. The faults are silent, so another compiler is refused here instead of failing at a user's desk.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang" OR CMAKE_CXX_COMPILER_VERSION VERSION_LESS 19)
  message(FATAL_ERROR
    "Tavrelon needs clang 19 or newer; this is ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}.\n"
    "g++ 12 miscompiles C++ coroutines (lost results of co_await, double frees), and nothing warns of it.\n"
    "Install clang-19 and use a preset: cmake --preset dev")
endif()
