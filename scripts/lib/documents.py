"""Documents made for a demonstration or measurement: PDF, RTF and HTML of given lines."""

LINES_ON_A_PAGE = 50


def pdf(lines):
    """A PDF of ASCII lines, LINES_ON_A_PAGE to a page."""
    pages = [lines[first:first + LINES_ON_A_PAGE] for first in range(0, len(lines), LINES_ON_A_PAGE)]
    kids = " ".join(f"{4 + 2 * page} 0 R" for page in range(len(pages)))
    objects = ["<< /Type /Catalog /Pages 2 0 R >>", f"<< /Type /Pages /Kids [{kids}] /Count {len(pages)} >>",
               "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"]
    for page, on_it in enumerate(pages):
        shown = "\n".join("(%s) Tj T*" % line.replace("\\", "\\\\").replace("(", "\\(").replace(")", "\\)")
                          for line in on_it)
        stream = f"BT /F1 11 Tf 14 TL 60 780 Td\n{shown}\nET"
        objects.append("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Resources << /Font << /F1 3 0 R >> >> "
                       f"/Contents {5 + 2 * page} 0 R >>")
        objects.append(f"<< /Length {len(stream)} >>\nstream\n{stream}\nendstream")
    text, places = "%PDF-1.4\n", []
    for number, content in enumerate(objects, 1):
        places.append(len(text))
        text += f"{number} 0 obj\n{content}\nendobj\n"
    table = "".join(f"{place:010} 00000 n \n" for place in places)
    return (f"{text}xref\n0 {len(places) + 1}\n0000000000 65535 f \n{table}"
            f"trailer << /Size {len(places) + 1} /Root 1 0 R >>\nstartxref\n{len(text)}\n%%EOF\n").encode("ascii")


def rtf(lines):
    def encoded(line):
        return "".join(letter if letter.isascii() else f"\\u{ord(letter)}?" for letter in line)
    return ("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Times;}}\\f0\\fs24 "
            + "\\par\n".join(encoded(line) for line in lines) + "}").encode("ascii")


def html(title, lines):
    body = "\n".join(f"<p>{line}</p>" for line in lines)
    return (f"<!DOCTYPE html><html><head><meta charset='utf-8'><title>{title}</title>"
            f"<style>p {{ margin: 1em }}</style></head><body>\n{body}\n</body></html>").encode()
