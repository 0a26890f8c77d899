"""Draws the house: the folders of src/ on their floors and who includes whom, as an SVG picture."""

import layers

WIDTH, ROW, BOX, GAP, LEFT = 1180, 92, 40, 18, 96
BESIDE = 880  # where the adapters' column begins
FONT = "font-family='DejaVu Sans, Verdana, sans-serif'"
COLOURS = ["#2f8dff", "#3d86ff", "#4a7fff", "#5779ff", "#6376ff", "#6f74ff", "#7b73ff", "#8773ff", "#9374fb", "#9f76f5",
           "#aa79ee", "#b47ce8"]


def direct(edges):
    """The edges that no longer way replaces."""
    def reaches(start, goal, without):
        todo, seen = [used for used in edges.get(start, ()) if (start, used) != without], set()
        while todo:
            folder = todo.pop()
            if folder == goal:
                return True
            if folder not in seen:
                seen.add(folder)
                todo.extend(edges.get(folder, ()))
        return False
    return sorted((user, used) for user in edges for used in edges[user]
                  if user != used and not reaches(user, used, (user, used)))


def width_of(name):
    return 26 + 8.4 * len(name)


def places(root):
    """The box of each folder: its left edge, its upper edge and its width; and the floors from the roof down."""
    floors = [[layers.ROOF]] + [[folder for folder in floor if (root / "src" / folder).is_dir()]
                                for floor in reversed(layers.FLOORS)]
    floors = [floor for floor in floors if floor]
    boxes = {}
    for row, floor in enumerate(floors):
        total = sum(map(width_of, floor)) + GAP * (len(floor) - 1)
        left = LEFT + (BESIDE - LEFT - total) / 2
        for folder in floor:
            boxes[folder] = (left, 70 + row * ROW, width_of(folder))
            left += width_of(folder) + GAP
    standing = [folder for folder in layers.ADAPTERS if (root / "src" / folder).is_dir()]
    for number, folder in enumerate(reversed(standing)):
        boxes[folder] = (BESIDE + 70, 70 + (2 + number) * ROW, 190)
    return boxes, floors


def down(boxes, user, used):
    """From the lower edge of one box to the upper edge of one on a lower floor."""
    (left, top, width), (other_left, other_top, other_width) = boxes[user], boxes[used]
    x, y, other_x = left + width / 2, top + BOX, other_left + other_width / 2
    bend = min(70, (other_top - y) / 2)
    return f"M{x:.0f} {y}C{x:.0f} {y + bend:.0f} {other_x:.0f} {other_top - bend:.0f} {other_x:.0f} {other_top}"


def aside(boxes, user, used):
    """Around the right side, between two boxes of one column or of one floor."""
    (left, top, width), (other_left, other_top, other_width) = boxes[user], boxes[used]
    if top == other_top:
        return (f"M{left + width / 2:.0f} {top + BOX}C{left + width / 2:.0f} {top + BOX + 28} "
                f"{other_left + other_width / 2:.0f} {top + BOX + 28} {other_left + other_width / 2:.0f} {top + BOX}")
    x = left + width
    return f"M{x} {top + BOX / 2}C{x + 30} {top + BOX / 2} {x + 30} {other_top + BOX / 2} {x} {other_top + BOX / 2}"


def picture(root):
    boxes, floors = places(root)
    height = 70 + len(floors) * ROW
    edges = direct({user: used - {user} for user, used in layers.check(root).edges.items()})
    lines = [f"<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 {WIDTH} {height}' width='{WIDTH}' height='{height}'>",
             "<title>The folders of src/ and what they include</title>",
             "<defs><marker id='a' viewBox='0 0 8 8' refX='7' refY='4' markerWidth='7' markerHeight='7' orient='auto'>"
             "<path d='M0 0L8 4L0 8z' fill='#7d86a8'/></marker></defs>",
             f"<rect width='{WIDTH}' height='{height}' rx='18' fill='#f7f8fd'/>",
             f"<text x='28' y='40' {FONT} font-size='19' font-weight='bold' fill='#2b2f45'>The house</text>",
             f"<text x='162' y='40' {FONT} font-size='13' fill='#6b7391'>an arrow goes from who includes to what is included;"
             " what follows by way of others is left out</text>"]
    for row, floor in enumerate(floors):
        y = 70 + row * ROW
        name = "roof" if row == 0 else f"floor {layers.floor_of(floor[0])}"
        lines.append(f"<rect x='18' y='{y - 14}' width='{BESIDE - 8}' height='{BOX + 28}' rx='12' fill='#eceffa'/>")
        lines.append(f"<text x='34' y='{y + 25}' {FONT} font-size='13' fill='#6b7391'>{name}</text>")
    adapters = [folder for folder in layers.ADAPTERS if folder in boxes]
    if adapters:
        lines.append(f"<rect x='{BESIDE + 40}' y='{70 + 2 * ROW - 50}' width='250' height='{len(adapters) * ROW + 20}' rx='12' "
                     f"fill='#e6f6ee'/><text x='{BESIDE + 70}' y='{70 + 2 * ROW - 22}' {FONT} font-size='13' fill='#4f7f6a'>"
                     "beside the house: adapters</text>")
    paths = []
    for user, used in edges:
        if user in adapters and used in adapters or boxes[user][1] == boxes[used][1]:
            paths.append(aside(boxes, user, used))
        elif user not in adapters and used not in adapters:
            paths.append(down(boxes, user, used))
    # All adapters stand in one relation to the house: the roof knows them, and they know the ports and what lies below.
    roof, ports = boxes[layers.ROOF], boxes["platform"]
    middle, upper, lower = BESIDE + 165, 70 + 2 * ROW - 50, 40 + (2 + len(adapters)) * ROW
    paths.append(f"M{roof[0] + roof[2]:.0f} {roof[1] + BOX / 2}C{middle - 80} {roof[1] + BOX / 2} {middle} {roof[1] + 40} {middle} {upper}")
    paths.append(f"M{middle} {lower}C{middle} {ports[1] + BOX / 2} {middle - 120} {ports[1] + BOX / 2} "
                 f"{ports[0] + ports[2]:.0f} {ports[1] + BOX / 2}")
    for path in paths:
        lines.append(f"<path d='{path}' fill='none' stroke='#7d86a8' stroke-opacity='0.8' stroke-width='1.6' "
                     "marker-end='url(#a)'/>")
    for folder, (left, top, width) in boxes.items():
        floor = layers.floor_of(folder)
        colour = "#2fa877" if folder in adapters else "#2b2f45" if floor is None else COLOURS[floor % len(COLOURS)]
        lines.append(f"<rect x='{left:.0f}' y='{top}' width='{width:.0f}' height='{BOX}' rx='10' fill='{colour}'/>"
                     f"<text x='{left + width / 2:.0f}' y='{top + 25}' {FONT} font-size='14' fill='#ffffff' "
                     f"text-anchor='middle'>{folder}</text>")
    return "\n".join(lines + ["</svg>", ""])
