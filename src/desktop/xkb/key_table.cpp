#include "desktop/xkb/key_table.h"

#include <algorithm>
#include <array>

namespace tavrelon::desktop {

namespace {

/// A virtual key, the symbol on its label, and the key code at its place; 0 for a second symbol of the same key.
struct Row {
    keys::VirtualKey key;
    xkb_keysym_t symbol;
    KeyCode place;
};

// clang-format off
constexpr auto rows = std::to_array<Row>({
    {0, XKB_KEY_a, 38}, {1, XKB_KEY_s, 39}, {2, XKB_KEY_d, 40}, {3, XKB_KEY_f, 41}, {4, XKB_KEY_h, 43},
    {5, XKB_KEY_g, 42}, {6, XKB_KEY_z, 52}, {7, XKB_KEY_x, 53}, {8, XKB_KEY_c, 54}, {9, XKB_KEY_v, 55},
    {11, XKB_KEY_b, 56}, {12, XKB_KEY_q, 24}, {13, XKB_KEY_w, 25}, {14, XKB_KEY_e, 26}, {15, XKB_KEY_r, 27},
    {16, XKB_KEY_y, 29}, {17, XKB_KEY_t, 28}, {31, XKB_KEY_o, 32}, {32, XKB_KEY_u, 30}, {34, XKB_KEY_i, 31},
    {35, XKB_KEY_p, 33}, {37, XKB_KEY_l, 46}, {38, XKB_KEY_j, 44}, {40, XKB_KEY_k, 45}, {45, XKB_KEY_n, 57},
    {46, XKB_KEY_m, 58}, {18, XKB_KEY_1, 10}, {19, XKB_KEY_2, 11}, {20, XKB_KEY_3, 12}, {21, XKB_KEY_4, 13},
    {23, XKB_KEY_5, 14}, {22, XKB_KEY_6, 15}, {26, XKB_KEY_7, 16}, {28, XKB_KEY_8, 17}, {25, XKB_KEY_9, 18},
    {29, XKB_KEY_0, 19}, {24, XKB_KEY_equal, 21}, {27, XKB_KEY_minus, 20}, {30, XKB_KEY_bracketright, 35},
    {33, XKB_KEY_bracketleft, 34}, {39, XKB_KEY_apostrophe, 48}, {41, XKB_KEY_semicolon, 47},
    {42, XKB_KEY_backslash, 51}, {43, XKB_KEY_comma, 59}, {44, XKB_KEY_slash, 61}, {47, XKB_KEY_period, 60},
    {50, XKB_KEY_grave, 49}, {10, XKB_KEY_less, 94}, {36, XKB_KEY_Return, 36}, {48, XKB_KEY_Tab, 23},
    {49, XKB_KEY_space, 65}, {51, XKB_KEY_BackSpace, 22}, {53, XKB_KEY_Escape, 9}, {76, XKB_KEY_KP_Enter, 104},
    {117, XKB_KEY_Delete, 119}, {114, XKB_KEY_Insert, 118}, {123, XKB_KEY_Left, 113}, {124, XKB_KEY_Right, 114},
    {125, XKB_KEY_Down, 116}, {126, XKB_KEY_Up, 111}, {115, XKB_KEY_Home, 110}, {119, XKB_KEY_End, 115},
    {116, XKB_KEY_Page_Up, 112}, {121, XKB_KEY_Page_Down, 117}, {122, XKB_KEY_F1, 67}, {120, XKB_KEY_F2, 68},
    {99, XKB_KEY_F3, 69}, {118, XKB_KEY_F4, 70}, {96, XKB_KEY_F5, 71}, {97, XKB_KEY_F6, 72}, {98, XKB_KEY_F7, 73},
    {100, XKB_KEY_F8, 74}, {101, XKB_KEY_F9, 75}, {109, XKB_KEY_F10, 76}, {103, XKB_KEY_F11, 95},
    {111, XKB_KEY_F12, 96}, {105, XKB_KEY_F13, 191}, {107, XKB_KEY_F14, 192}, {113, XKB_KEY_F15, 193},
    {106, XKB_KEY_F16, 194}, {64, XKB_KEY_F17, 195}, {79, XKB_KEY_F18, 196}, {80, XKB_KEY_F19, 197},
    {90, XKB_KEY_F20, 198}, {82, XKB_KEY_KP_0, 90}, {83, XKB_KEY_KP_1, 87}, {84, XKB_KEY_KP_2, 88},
    {85, XKB_KEY_KP_3, 89}, {86, XKB_KEY_KP_4, 83}, {87, XKB_KEY_KP_5, 84}, {88, XKB_KEY_KP_6, 85},
    {89, XKB_KEY_KP_7, 79}, {91, XKB_KEY_KP_8, 80}, {92, XKB_KEY_KP_9, 81}, {65, XKB_KEY_KP_Decimal, 91},
    {67, XKB_KEY_KP_Multiply, 63}, {69, XKB_KEY_KP_Add, 86}, {75, XKB_KEY_KP_Divide, 106},
    {78, XKB_KEY_KP_Subtract, 82}, {81, XKB_KEY_KP_Equal, 125}, {82, XKB_KEY_KP_Insert, 0}, {83, XKB_KEY_KP_End, 0},
    {84, XKB_KEY_KP_Down, 0}, {85, XKB_KEY_KP_Page_Down, 0}, {86, XKB_KEY_KP_Left, 0}, {87, XKB_KEY_KP_Begin, 0},
    {88, XKB_KEY_KP_Right, 0}, {89, XKB_KEY_KP_Home, 0}, {91, XKB_KEY_KP_Up, 0}, {92, XKB_KEY_KP_Page_Up, 0},
    {65, XKB_KEY_KP_Delete, 0}, {65, XKB_KEY_KP_Separator, 0}, {56, XKB_KEY_Shift_L, 50}, {60, XKB_KEY_Shift_R, 62},
    {59, XKB_KEY_Control_L, 37}, {62, XKB_KEY_Control_R, 105}, {58, XKB_KEY_Alt_L, 64}, {61, XKB_KEY_Alt_R, 108},
    {55, XKB_KEY_Super_L, 133}, {54, XKB_KEY_Super_R, 134}, {57, XKB_KEY_Caps_Lock, 66},
});
// clang-format on

}  // namespace

std::optional<keys::VirtualKey> virtualKeyOfSymbol(xkb_keysym_t symbol) {
    const auto* row = std::ranges::find(rows, symbol, &Row::symbol);
    return row == rows.end() ? std::nullopt : std::optional(row->key);
}

std::optional<keys::VirtualKey> virtualKeyOfPlace(KeyCode code) {
    const auto* row = std::ranges::find(rows, code, &Row::place);
    return code == 0 || row == rows.end() ? std::nullopt : std::optional(row->key);
}

std::optional<KeyLabel> labelOf(keys::VirtualKey key) {
    const auto* row = std::ranges::find(rows, key, &Row::key);
    return row == rows.end() ? std::nullopt : std::optional(KeyLabel{row->symbol, row->place});
}

}  // namespace tavrelon::desktop
