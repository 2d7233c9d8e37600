"""Prints what a workbook holds, as a program of another make reads it.

usage: book_cells.py FILE

A line "sheet NAME", then a line a row: the colour of its font (all of its cells have it, or "mixed"), and each cell as
"n VALUE FORMAT" for a number or "s VALUE" for a text, all parted by "|"; at last "end". A book that is damaged ends it
with an error.
"""

import sys
import warnings

import openpyxl

warnings.simplefilter("error")
book = openpyxl.load_workbook(sys.argv[1])
for sheet in book.worksheets:
    print("sheet", sheet.title)
    for row in sheet.iter_rows():
        cells = [cell for cell in row if cell.value is not None]
        colours = {cell.font.color.rgb for cell in cells}
        texts = [
            f"n {cell.value!r} {cell.number_format}" if cell.data_type == "n" else f"{cell.data_type} {cell.value}"
            for cell in cells
        ]
        print("|".join([colours.pop() if len(colours) == 1 else "mixed", *texts]))
print("end", flush=True)
