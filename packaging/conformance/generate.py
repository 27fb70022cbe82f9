#!/usr/bin/env python3
"""Writes kvshare-conformance.json: inputs and the results that every implementation must give.

The results do not come from the library. Each function below follows the description of one
operation step by step, in exact decimal arithmetic and plain text, as slow as that may be; the
library's tests then compare its own answers with the file. docs/conformance.md tells the format.

    generate.py          writes the file beside this script
    generate.py --check  exits with 1 when the file differs from what would be written
"""

import calendar
import datetime
import itertools
import json
import pathlib
import re
import sys
from decimal import ROUND_DOWN, ROUND_HALF_EVEN, ROUND_HALF_UP, Decimal, localcontext

TARGET = pathlib.Path(__file__).with_name("kvshare-conformance.json")
TEN_THOUSANDTH = Decimal("0.0001")
MAX = Decimal("922337203685477.5807")
MIN = Decimal("-922337203685477.5808")

MODES = """mrNoRound mrDownToBaht mrNearBaht mrUpToBaht mrDownTo25 mrNear25 mrUpTo25 mrDownTo50
mrNear50 mrUpTo50 mrOneDigits mrTwoDigits mrThreeDigits mrFourDigits mrFiveDigits mrSixDigits
mrDownTo5Baht mrNear5Baht mrUpto5Baht mrDownTo10Baht mrNear10Baht mrUpto10Baht mrDownTo50Baht
mrNear50Baht mrUpto50Baht mrDownTo100Baht mrNear100Baht mrUpto100Baht""".split()
PRICE_MODES = MODES[:7] + MODES[10:16]


class Refused(Exception):
    """The operation throws the named exception."""


# ---- amounts ----


def currency(value):
    """Stores a number as an amount: four decimals, a tie to the even neighbour."""
    amount = value.quantize(TEN_THOUSANDTH, ROUND_HALF_EVEN)
    if not MIN <= amount <= MAX:
        raise Refused("EIntOverflow")
    return amount + 0  # no minus zero


def trunc(value):
    return value.to_integral_value(ROUND_DOWN)


def frac(value):
    return value - trunc(value)


# ---- rounding ----


def half_up(x, digits):
    sign, m = (-1, -x) if x < 0 else (1, x)
    text = f"{frac(m):.10f}"
    value = Decimal(text[2 : 2 + digits] or 0)
    if text[2 + digits] >= "5":
        value += 1
    return (value.scaleb(-digits) + trunc(m)) * sign


def round_to(x, digits):
    return currency(half_up(x, digits))


def near(m, step):
    return trunc((m + step / 2) / step) * step


def up(m, step):
    r = near(m, step)
    return r + step if m > r else r


def up_by_fraction(m, step):
    return trunc(m) if frac(m / step) == 0 else trunc(m / step) * step + step


def near25(m):
    return trunc(m) + near(frac(m) * 4, Decimal(1)) / 4


def down25(m):
    r = near25(m)
    return r - Decimal("0.25") if m < r else r


def up25(m):
    r = near25(m)
    return r + Decimal("0.25") if m > r else r


def round_magnitude(m, mode):
    half = Decimal("0.5")
    if mode in PRICE_MODES[7:]:
        return half_up(m, PRICE_MODES.index(mode) - 6)
    steps = {
        "mrNoRound": lambda: m,
        "mrDownToBaht": lambda: trunc(m),
        "mrNearBaht": lambda: trunc((m * 100 + 50) / 100),
        "mrUpToBaht": lambda: trunc(m) if frac(m) == 0 else trunc(m) + 1,
        "mrDownTo25": lambda: down25(m),
        "mrNear25": lambda: near25(m),
        "mrUpTo25": lambda: up25(m),
        "mrDownTo50": lambda: trunc(m * 2) * half,
        "mrNear50": lambda: trunc((m + half / 2) * 2) * half,
        "mrUpTo50": lambda: up(m, half),
    }
    for baht, rounded_up in ((5, up), (10, up_by_fraction), (50, up), (100, up_by_fraction)):
        step = Decimal(baht)
        steps[f"mrDownTo{baht}Baht"] = lambda step=step: trunc(m / step) * step
        steps[f"mrNear{baht}Baht"] = lambda step=step: near(m, step)
        steps[f"mrUpto{baht}Baht"] = lambda step=step, rule=rounded_up: rule(m, step)
    return steps[mode]()


def round_baht(x, mode):
    sign, m = (-1, -x) if x < 0 else (1, x)
    return currency(sign * round_magnitude(m, mode))


def share_value(amount, percent):
    share = round_to(currency(amount * percent / 100), 2)
    return share, currency(amount - share)


# ---- Format and FormatFloat, for amounts, integers and texts ----


def fixed(value, decimals, thousands):
    """The digits of a number, half away from zero, without the sign of a zero."""
    rounded = value.quantize(Decimal(1).scaleb(-decimals), ROUND_HALF_UP)
    return f"{rounded + 0:{',' if thousands else ''}.{decimals}f}"


def pattern(text, *arguments):
    """Format: % [-] [width] [.precision] d f n s, and %%."""
    rest = list(arguments)

    def directive(match):
        left, width, precision, kind = match.groups()
        if kind == "%":
            return "%"
        value = rest.pop(0)
        if kind == "d":
            if not isinstance(value, int):
                raise Refused("EConvertError")
            digits = int(precision or 0)
            digits = 0 if digits > 32 else digits  # a longer precision is ignored
            shown = ("-" if value < 0 else "") + str(abs(value)).zfill(digits)
        elif kind == "s":
            shown = value if precision is None else value[: int(precision)]
        else:
            decimals = 2 if precision is None or int(precision) > 18 else int(precision)
            shown = fixed(value, decimals, kind == "n")
        size = int(width or 0)
        return shown.ljust(size) if left else shown.rjust(size)

    if re.search(r"%-\d+\.-", text):
        raise Refused("EConvertError")
    return re.sub(r"%(-?)(\d*)(?:\.(\d*))?([dfns%])", directive, text)


def mask_tokens(section):
    return re.findall(r"'[^']*'?|\"[^\"]*\"?|.", section)


def mask_sections(mask):
    sections = [""]
    for token in mask_tokens(mask):
        if token == ";":
            sections.append("")
        else:
            sections[-1] += token
    return sections + [""] * (3 - len(sections))


def general(value):
    text = f"{value:f}"
    return text.rstrip("0").rstrip(".") if "." in text else text


def print_section(section, value):
    tokens = mask_tokens(section)
    point = tokens.index(".") if "." in tokens else len(tokens)
    places = [i for i, token in enumerate(tokens) if token in "0#"]
    left = [i for i in places if i < point]
    right = [i for i in places if i > point]
    zeros_left = sum(1 for i in left if i >= min((j for j in left if tokens[j] == "0"), default=point))
    zeros_right = max((n + 1 for n, i in enumerate(right) if tokens[i] == "0"), default=0)

    whole, _, decimals = fixed(abs(value), len(right), False).partition(".")
    whole = whole.lstrip("0").rjust(zeros_left, "0")
    decimals = decimals.rstrip("0").ljust(zeros_right, "0")
    # One text a place; digits that have no place stand before the first.
    shown = [(whole[n] if n >= 0 else "") for n in range(len(whole) - len(left), len(whole))]
    if left and len(whole) > len(left):
        shown[0] = whole[: len(whole) - len(left) + 1]
    if "," in tokens:
        remaining = len(whole)
        for n, digits in enumerate(shown):
            grouped = ""
            for digit in digits:
                grouped += digit
                remaining -= 1
                if remaining and remaining % 3 == 0:
                    grouped += ","
            shown[n] = grouped
    at = dict(zip(left, shown)) | {
        i: decimals[n] if n < len(decimals) else "" for n, i in enumerate(right)
    }
    result = ""
    for i, token in enumerate(tokens):
        if i in at:
            if right and i == right[0] and at[i]:
                result += "."
            result += at[i]
        elif token[0] in "'\"":
            result += token[1:].rstrip(token[0])
        elif token not in ".,":
            result += token
    return result


def format_float(mask, value):
    first, negative, zero = mask_sections(mask)
    section = negative if value < 0 and negative else first
    decimals = sum(1 for token in mask_tokens(section.partition(".")[2]) if token in "0#")
    if value == 0 or value.quantize(Decimal(1).scaleb(-decimals), ROUND_HALF_UP) == 0:
        value, section = Decimal(0), zero or first
    if not section:
        return general(value)
    sign = "-" if value < 0 and section is first else ""
    return sign + print_section(section, value)


# ---- fixed-width text and words ----


def copy(text, index, count):
    return text[index - 1 : max(index - 1 + count, 0)]


def str_zero(amount, width, decimals):
    whole = int(trunc(amount))
    w = width - decimals - (1 if whole < 0 else 0)
    if decimals < 1:
        text = pattern(pattern("%%%d.%dd", w, w), whole)
    else:
        text = pattern(pattern("%%%d.%dd", w - 1, w - 1), whole)
        fraction = pattern(pattern("%%%d.%df", decimals, decimals), frac(abs(amount)))
        text += copy(fraction, 2, decimals + 1)
    text = text.strip(" ")
    return copy(text.rjust(width, "0"), 1, width)


THAI_DIGITS = [""] + "หนึ่ง สอง สาม สี่ ห้า หก เจ็ด แปด เก้า ยี่ เอ็ด".split()
THAI_PLACES = ["", "แสน", "หมื่น", "พัน", "ร้อย", "สิบ", ""]


def thai_word(digits):
    if digits == "000000":
        return ""
    words = ""
    for i in range(1, 7):
        if digits[i - 1] not in "0123456789":
            raise Refused("EConvertError")
        d = int(digits[i - 1])
        if d == 0:
            continue
        k = d
        if i == 5 and d == 2:
            k = 10
        if i == 5 and d == 1:
            k = 0
        if i == 6 and d == 1 and digits[4] != "0":
            k = 11
        if 1 <= k <= 11:
            words += THAI_DIGITS[k]
        words += THAI_PLACES[i]
    return words


def thai_note(x):
    a = round_to(x, 2)
    if a == 0:
        return "(ศูนย์ถ้วน)"
    if a > 1_000_000_000_000:
        return "(ไม่สามารถแปลค่าเกินแสนล้านได้)"
    s = str_zero(a, 16, 2)
    r = ""
    w = thai_word(copy(s, 2, 6))
    if w:
        r = w + "ล้าน"
    w = thai_word(copy(s, 8, 6))
    if w or r:
        r += w + "บาท"
    satang = copy(s, 15, 2)
    r += "ถ้วน" if satang == "00" else thai_word("0000" + satang) + "สตางค์"
    return f"({r})"


ENGLISH_UNITS = """One Two Three Four Five Six Seven Eight Nine Ten Eleven Twelve Thirteen Fourteen
Fifteen Sixteen Seventeen Eighteen Nineteen""".split()
ENGLISH_TENS = "Ten Twenty Thirty Forty Fifty Sixty Seventy Eighty Ninety".split()


def below_thousand(n):
    if n == 0:
        return ""
    if n <= 19:
        return ENGLISH_UNITS[n - 1] + " "
    if n <= 99:
        return ENGLISH_TENS[n // 10 - 1] + " " + below_thousand(n % 10)
    words = below_thousand(n // 100) + "Hundred "
    return words + "and " + below_thousand(n % 100) if n % 100 > 0 else words


def num_to_words(n):
    if n < 0:
        return ""
    if n < 1000:
        return below_thousand(n)
    scale, name = (1000, "Thousand ") if n < 1_000_000 else (1_000_000, "Million ")
    rest = n % scale
    return num_to_words(n // scale) + name + ("and " if 1 <= rest <= 99 else "") + num_to_words(rest)


def english_parts(x):
    s = str_zero(round_to(x, 2), 16, 2)
    low = int(copy(s, 2, 12)) & 0xFFFFFFFF
    whole = low - (1 << 32) if low >= 1 << 31 else low
    return num_to_words(whole), num_to_words(int(copy(s, 15, 2)))


def eng_note(x):
    b, c = english_parts(x)
    return b + "Baht " + c + "Stang" if c else b + "Baht Only"


def eng_crncy(x, unit, sub_unit):
    b, c = english_parts(x)
    return b + unit + " " + c + sub_unit if c else b + unit + " Only"


# ---- quantities ----


def pack_parts(factor, qty):
    if factor == 0:
        raise Refused("EInvalidOp" if qty == 0 else "EZeroDivide")
    w = len(pattern("%d", int(trunc(factor)))) + (1 if frac(factor) != 0 else 0)
    packs = int(trunc(qty / factor))
    loose = int(trunc(qty - packs * factor))
    if not all(-(1 << 31) <= n < 1 << 31 for n in (packs, loose)):
        raise Refused("EIntOverflow")
    return w, packs, loose


def reformat_qty(factor, qty):
    w, packs, loose = pack_parts(factor, qty)
    return pattern("%12.0n." + pattern("%%%d.%dd", w, w), Decimal(packs), loose)


def show_qty(factor, qty, part):
    w, packs, loose = pack_parts(factor, qty)
    fraction = Decimal(loose)
    for _ in range(w):
        fraction = currency(fraction / 10)
    return {1: Decimal(packs), 2: Decimal(loose), 3: packs + fraction}.get(part, Decimal(0))


def show_sku_qty(mode, style, decimals, eq_style, qty, factor, rate):
    if factor == 0 or not is_float(rate):
        return ""
    quantity = "%12." + str(decimals) + "n"
    packs = trunc(qty / factor)
    a = pattern("%12.0n", packs).strip()
    b = pattern(quantity, qty - packs * factor).strip()
    c = pattern("%12.0n", factor).strip()
    plain = pattern(quantity, qty) if decimals != 0 else pattern("%12.0n", trunc(qty))
    layouts = {1: plain, 2: f"{a}+{b}", 3: f"{a}*{c}+{b}", 4: f"{a}+{b}/{c}"}
    if mode == 1:
        return plain if factor == 1 else layouts.get(style, "")
    if mode == 2:
        e = pattern("%12.6n", qty * Decimal(rate)).strip()
        layouts |= {style + 4: f"{text}={e}" for style, text in layouts.items()}
        return layouts.get(eq_style, "")
    return ""


def is_integer(text):
    decimal = re.fullmatch(r" *[+-]?(\d+)", text)
    if decimal:
        return -(1 << 63) <= int(text) < 1 << 63
    return bool(re.fullmatch(r" *[+-]?(\$|0?[xX])[0-9A-Fa-f]{1,16}", text))


def is_float(text):
    number = re.fullmatch(r" *[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)? *", text)
    return bool(number) and abs(Decimal(text.strip())) < Decimal("1.8e308")


# ---- dates: a moment is a datetime, an era the number added to Christian years ----


THAI_MONTHS = """มกราคม กุมภาพันธ์ มีนาคม เมษายน พฤษภาคม มิถุนายน กรกฎาคม สิงหาคม กันยายน ตุลาคม
พฤศจิกายน ธันวาคม""".split()
ENGLISH_MONTHS = """January February March April May June July August September October November
December""".split()
THAI_DAYS = "อา จ. อ. พ. พฤ ศ. ส.".split()  # from Sunday


def moment(text):
    return datetime.datetime.fromisoformat(text)


def iso(date):
    """Midnight is written as the day alone."""
    return date.isoformat() if date.time() != datetime.time() else date.date().isoformat()


def dated(layout, d, era):
    """The parts of a layout, the year shifted; yy are the last two digits of its four."""
    year = f"{d.year + era:04d}"
    named = {"dd": f"{d.day:02d}", "mm": f"{d.month:02d}", "yyyy": year, "yy": year[2:4]}
    return re.sub("dd|mm|yyyy|yy", lambda part: named[part[0]], layout)


FIXED_LAYOUTS = {
    "yymmdd19": ("yymmdd", 0), "ddmmyy19": ("ddmmyy", 0), "yymmdd25": ("yymmdd", 543),
    "yyyymmdd19": ("yyyymmdd", 0), "yyyymmdd25": ("yyyymmdd", 543), "ddmmyyyy19": ("ddmmyyyy", 0),
    "ddmmyyyy25": ("ddmmyyyy", 543), "mmddyyyy19": ("mmddyyyy", 0), "ddmmyyyysl25": ("dd/mm/yyyy", 543),
    "mmddyyyysl19": ("mm/dd/yyyy", 0),
}


def show_full_date(d, era):
    return THAI_DAYS[d.isoweekday() % 7] + " " + dated("dd/mm/yyyy", d, era)


def show_time(d):
    return f"{d.hour:02d}:{d.minute:02d}"


def show_full_month_year(d, era, language):
    names = THAI_MONTHS if language == 0 else [name.upper() for name in ENGLISH_MONTHS]
    return f"{names[d.month - 1]}, {d.year + era}"


def stamp(d):
    return dated("yyyymmdd", d, 0) + f"{d.hour:02d}{d.minute:02d}"


def time_stamp(d):
    return stamp(d) + f"{d.second:02d}{d.microsecond // 10_000:02d}"


def month_length(d):
    return calendar.monthrange(d.year, d.month)[1]


def change_month(d, delta):
    anchor = datetime.datetime(d.year, d.month, month_length(d) if delta >= 1 else 1)
    there = anchor + datetime.timedelta(days=delta)
    return there.replace(day=min(d.day, month_length(there)))


def integer(text):
    """A 32-bit integer in the platform's spelling, or a ValueError."""
    match = re.fullmatch(r" *([+-]?)(?:(\d+)|(?:\$|0?[xX])([0-9A-Fa-f]+))", text)
    if not match:
        raise ValueError(text)
    sign, decimal, hexadecimal = match.groups()
    value = int(decimal) if decimal else int(hexadecimal, 16)
    if hexadecimal and value >= 1 << 31:
        value -= 1 << 32
    value = -value if sign == "-" else value
    if not -(1 << 31) <= value < 1 << 31:
        raise ValueError(text)
    return value


def parse_date(text, era):
    """The date of a typed text as yyyy-mm-dd, False where it is refused."""
    separator = "/" if "/" in text else "-"
    if text.count(separator) < 2:
        return False
    first, month, last = text.split(separator, 2)
    year, day = (last, first) if len(first) == 2 else (first, last)
    try:
        full = integer(year) % 65536
        if full < 100:
            full += 2500 if era != 0 else 2000
        return iso(datetime.datetime((full - era) % 65536, integer(month), integer(day)))
    except ValueError:
        return False


def force_parse_date(text, current_year):
    if text.count("/") < 2:
        return False
    day, month, year = text.split("/", 2)
    try:
        number = integer(year)
        distance = abs(number - current_year)
        number -= 1086 if distance > 1000 else 543 if distance > 100 else 0
        return iso(datetime.datetime(number, integer(month), integer(day)))
    except (ValueError, OverflowError):
        return False


def read_stamp(*places):
    """A reader of numbers at places, from 1: year, month, day and, if they are there, hour, minute."""

    def read(text):
        try:
            numbers = [integer(copy(text, at, 4 if i == 0 else 2)) for i, at in enumerate(places)]
            return iso(datetime.datetime(*numbers))
        except ValueError:
            raise Refused("EConvertError") from None

    return read


# ---- the cases ----


def answer(function, *arguments):
    """The expected part of a case: a result, or the name of the exception."""
    try:
        result = function(*arguments)
    except Refused as refused:
        return {"error": str(refused)}
    return {"expect": f"{result:.4f}" if isinstance(result, Decimal) else result}


def cases(function, names, rows, amounts=()):
    """One case a row; the arguments named in `amounts` are given as decimal texts."""
    made = []
    for row in rows:
        row = row if isinstance(row, tuple) else (row,)
        named = dict(zip(names.split(), row))
        values = [Decimal(v) if n in amounts else v for n, v in named.items()]
        made.append(named | answer(function, *values))
    return made


def signed(texts):
    return [t for text in texts for t in (text, "-" + text)]


def rounding_rows():
    steps = {m: "1" for m in MODES[1:4]} | {m: "0.25" for m in MODES[4:7]}
    steps |= {m: "0.5" for m in MODES[7:10]}
    steps |= {m: str(Decimal(1).scaleb(-n)) for n, m in enumerate(MODES[10:14], 1)}
    for n, baht in enumerate(("5", "10", "50", "100")):
        steps |= {m: baht for m in MODES[16 + 3 * n : 19 + 3 * n]}
    for mode in MODES:
        step = Decimal(steps.get(mode, "1"))
        near_value = 12 * step
        for offset in (0, TEN_THOUSANDTH, step / 2 - TEN_THOUSANDTH, step / 2, step - TEN_THOUSANDTH):
            amount = (near_value + offset).quantize(TEN_THOUSANDTH, ROUND_DOWN)
            yield f"{amount:f}", mode
        yield f"{-(near_value + step / 2).quantize(TEN_THOUSANDTH, ROUND_DOWN):f}", mode
        yield f"{-(near_value + TEN_THOUSANDTH):f}", mode
        yield f"{MAX:f}", mode
        yield f"{MIN:f}", mode
    worked = "12.49 mrNearBaht,-12.75 mrDownToBaht,-12.25 mrUpToBaht,12.12 mrNear25,12.875 mrNear25"
    worked += ",12.20 mrDownTo25,12.10 mrUpTo25,12.25 mrUpTo25,12.24 mrNear50,12.75 mrNear50"
    worked += ",12.49 mrNear5Baht,20.00 mrUpto10Baht,20.01 mrUpto10Baht,150.00 mrNear100Baht"
    yield from (tuple(text.split()) for text in worked.split(","))


THAI_AMOUNTS = """0 0.004 0.005 0.01 0.10 0.11 0.20 0.21 0.50 0.995 1 2 10 11 12 20 21 21.25 22 91
99.99 99.995 100 101.01 110.11 111 121 201 1000 1001 1011 1200 10000 10001 12345.67 100000 100001
111111.11 221121.21 999999.99 1000000 1000001 1000011 11000000 21000000.20 1234567.89 101000000
121000021.05 999999999.99 1000000000 2147483647.99 100000000000 111111111111.11
999999999999.99 999999999999.995 1000000000000 1000000000000.004 1000000000000.005
1000000000000.01 922337203685477.5807 -0.004 -0.01 -1234.50 -999999999999.99""".split()

ENGLISH_AMOUNTS = """0 0.004 0.005 0.25 1 1.01 11.11 19 20 21.25 45 99 100 100.50 105 110 119.19 999
999.995 1000 1001 1050 1099 1100 1234.50 10000 12345.67 99999 100000 100001 100100 999999.99 1000000
1000005 1000099 1000100 1001000 1001005 1100000 1234567.89 21000000.20 100000000 999999999.99
1000000000 2000000000 2000000001 2147483647.99 2147483648 4294967296 4294967301.05
999999999999.99 1000000000000 -0.50 -1234.50 -2147483647.99""".split()

STR_ZERO_ROWS = """1234.5 16 2,-1234.5 16 2,1.999 8 2,-0.5 16 2,0 16 2,0.995 8 2,-1.995 8 2
12345.678 6 0,-12345.678 6 0,-12345.678 12 0,12345.678 3 0,12345.678 7 2,1 1 0,1 0 0,-1 1 0
0.5 3 2,0.5 2 2,1.5 4 1,9.95 5 1,9.9999 9 3,9.9999 9 4,-9.9995 9 4,1.25 12 6,1.25 20 10,5 3 -2
922337203685477.5807 24 4,-922337203685477.5808 24 4,-922337203685477.5808 10 4,7 32 0,7 33 0
-7 32 0,-7 33 0,-7 34 0,-7 40 2,7 40 2,-7 -1 0,7 -1 2,1.5 30 20"""

PATTERNS = ["%12.2n", "%.2f", "%.0n", "%-12.1n|", "(%12.2n)", "%12.4f", "%20.8f", "%12.2n%%"]
PATTERN_AMOUNTS = """0 0.005 -0.0001 -2.345 999.995 -1234.5 1234567.891 922337203685477.5807
-922337203685477.5808""".split()

MASKS = ["###,###,###,##0.00", "0.00", "#.##", "0.0#", "0;(0)", "0.00;(0.00);-", "0000;1;_",
         "00;1;_", "###,###,###,##0.00%", "###########0.", "0,000", "000-0000", "'฿ '0.00", "$0.00"]
MASK_AMOUNTS = "0 0.001 -0.001 0.5 -0.5 -5 12.5 -1234.5 1234567.891 12345678901234.5".split()

SKU_ROWS = [
    (mode, style, decimals, eq_style, qty, factor, "0.5")
    for decimals, qty, factor in ((0, "29", "12"), (2, "29.5", "12"), (0, "-29", "12"))
    for mode, style, eq_style in [(1, n, 0) for n in range(6)] + [(2, 0, n) for n in range(10)]
] + [
    (1, 2, 0, 0, "29", "1", "0.5"),
    (2, 2, 0, 2, "29", "1", "0.5"),
    (1, 2, 0, 0, "29", "0", "0.5"),
    (3, 2, 0, 2, "29", "12", "0.5"),
    (2, 2, 0, 6, "29", "12", "half"),
    (1, 4, 1, 0, "1234567.89", "1000.5", "1"),
    (2, 0, 0, 5, "123456789012.3456", "12", "1.000001"),
    (2, 0, 0, 6, "0.5", "12", "0.000001"),
    (2, 0, 4, 6, "-0.5", "12", "0.453592"),
]

QUANTITIES = [(f, q) for f in ("12", "1", "10", "2.5", "144", "1000", "0.5", "-12")
              for q in ("29", "-29", "0", "11.9999", "1234567.5")]
QUANTITIES += [("0", "5"), ("0", "0"), ("0.0001", "300000"), ("12000", "12005"), ("123456", "9")]


def groups():
    amount = ("Amount",)
    pair = ("Factor", "Qty")
    yield ("Round_Baht", "an amount by a mode: multiples, ties, their neighbours, both ends",
           cases(round_baht, "Amount Mode", rounding_rows(), amount))
    yield ("RoundType", "the mode of a stored code",
           cases(lambda code: MODES[code] if code < len(MODES) else MODES[0], "Code", (0, 1, 10, 27, 28, 65535)))
    yield ("PrRoundType", "the mode of a stored code of the price list",
           cases(lambda code: (PRICE_MODES + [MODES[0]] * 65536)[code], "Code", (*range(15), 65535)))
    yield ("RoundTo", "half up on the magnitude to a number of decimals",
           cases(round_to, "Amount Digits",
                 [(a, d) for a in signed(["2.345", "2.3449", "0.5", "0.4999", "9.9995", "1234.5678"])
                  for d in (0, 1, 2, 3, 4, 6)], amount))
    percents = "0 0.0001 7 33.3333 50 100 -7 150 12.345".split()
    yield ("ShareValue", "the share of a percentage to the satang, and the rest",
           [{"Amount": a, "Percent": p} | answer(
               lambda a, p: [f"{v:.4f}" for v in share_value(a, p)], Decimal(a), Decimal(p))
            for a in ("100", "-100", "0.01", "1234567.89", "922337203685477.5807") for p in percents])
    yield ("ThaiWord", "six digits in Thai words",
           cases(thai_word, "Digits", "000000 000001 000010 000011 000020 000021 000101 000110 000111 "
                 "000222 001001 010101 100001 111111 121212 999999 00000x 0000.5".split()))
    yield "ThaiNote", "an amount in Thai words", cases(thai_note, "Amount", THAI_AMOUNTS, amount)
    yield ("NumToWords", "an integer in English words", cases(num_to_words, "N", (
        -(1 << 31), -1, 0, 1, 13, 20, 45, 90, 100, 105, 999, 1000, 1099, 1100, 100000, 1000000, 1000099,
        1000100, 999999999, 2000000000, 2147483647)))
    yield "EngNote", "an amount in English words", cases(eng_note, "Amount", ENGLISH_AMOUNTS, amount)
    yield ("EngCrncy", "an amount in English words with the caller's units",
           cases(eng_crncy, "Amount UnitName SubUnitName",
                 [(a, "Dollars", "Cents") for a in ("12.01", "12.00", "0", "0.5")] + [("1.5", "", "")],
                 amount))
    rows = [row.split() for line in STR_ZERO_ROWS.splitlines() for row in line.split(",")]
    yield ("StrZero", "fixed-width text with leading zeros",
           cases(str_zero, "Amount Width Decimals", [(a, int(w), int(d)) for a, w, d in rows], amount))
    yield ("ReformatQty", "a quantity as packs and loose units",
           cases(reformat_qty, "Factor Qty", QUANTITIES, pair))
    yield ("ShowQty", "the same as a number; parts 1 to 4",
           cases(show_qty, "Factor Qty Part", [q + (3,) for q in QUANTITIES] +
                 [("12", "29", part) for part in (0, 1, 2, 4)], pair))
    yield ("ShowSkuQty", "the quantity text of a stock-keeping unit",
           cases(show_sku_qty, "Mode Style Decimals EqStyle Qty Factor Rate", SKU_ROWS, pair))
    texts = ["", " ", "5", " 5", "5 ", "+5", "-5", "- 5", "12.5", "1,000", "$1F", "x1f", "0X1F", "$", "-.5",
             "5.", "1E3", "E5", "1e400", "1.5x", "9223372036854775807", "9223372036854775808",
             "-9223372036854775808", "$10000000000000000"]
    yield "IsInteger", "whether a text is a 64-bit integer", cases(is_integer, "S", texts)
    yield ("IsFloat", "whether a text is a real number, under a decimal point",
           cases(is_float, "S", texts))
    yield ("Format", "an amount through a pattern",
           cases(pattern, "Pattern Amount", [(p, a) for p in PATTERNS for a in PATTERN_AMOUNTS], amount))
    yield ("FormatFloat", "an amount through a display mask",
           cases(format_float, "Mask Amount", [(m, a) for m in MASKS for a in MASK_AMOUNTS], amount))


DATES = """2003-07-15 2004-02-29 2000-02-29 1900-03-01 1899-12-30 1899-12-29 1999-12-31 2000-01-01
2026-11-25 0001-01-01 0099-05-06 0457-12-31 1957-01-01 9456-12-31""".split()
MOMENTS = """2003-07-15T14:05:09.876 2003-07-15T00:00:00.009 2026-11-25T23:59:59.990 1899-12-29T06:00
2004-02-29T09:07:05 2003-07-15""".split()

TYPED = """15/07/2546 15/07/2003 15-07-46 15/07/03 2546/07/15 2003-07-15 15/7/2546 01/1/46 5/07/2546
5/7/2546 05/07/99 05/07/100 05/07/00 29/02/2547 29/02/2546 29/02/2004 31/04/2003 31/12/2442 30/02/47
15/13/2546 15/00/2546 00/07/2546 32/07/2546 15/07/543 15/07/544 15/07/9999 15/07/10000 15/07/10542
15/07/10543 15/07/68082 15/07/-1 15/$7/2546 $F/07/2546 0x/07/2546 15/07-2546 15-07/2546 15-07/25/46 15/07
15072546 15.07.2546 / // - -- 15//2546 /07/2546 15/07/ 15/07/2546/1 15/07/2546x 2546/07/15x 2003/2/29
2004/2/29 3089/07/15 15/07/3089""".split() + ["", " 5/07/2546", "15/07/2546 ", "15/ 7/2546", "15 /07/2546"]

FORCED = """15/07/2546 15/07/2003 5/7/2546 15/07/3089 15/07/46 15/007/02003 15-07-2546 2546/07/15 31/02/2546
15/07/1926 15/07/1925 15/07/2126 15/07/2127 15/07/1026 15/07/1025 15/07/3026 15/07/3027 15/07/11085
15/07/11086 15/07/-2147483648 15/07/x 15/07 29/2/2547""".split() + ["", " 1/ 1/ 2003"]

STAMPS = """200307151405 20030715 20030715140509 200302291405 200402292359 200307152400 200307151460 2003071x1405
2oo307151405 000001010000 999912312359 2003 20030715and 000101010000""".split() + ["", "20030715 9 7"]
SEPARATED = "2003-07-15 2003/07/15 2003x07y15z 2003-7-15 2004-02-29 2003-02-29 20030715 2003-07".split()


def date_groups():
    """Dates and moments are ISO texts in the file."""

    def on(function, names, rows):
        made = []
        for row in rows:
            row = row if isinstance(row, tuple) else (row,)
            made.append(dict(zip(names.split(), row)) | answer(function, moment(row[0]), *row[1:]))
        return made

    both = [(d, era) for d in DATES for era in (543, 0)]
    yield ("ShowDate", "a date with its year shifted",
           on(lambda d, era: dated("dd/mm/yyyy", d, era), "D Offset", both))
    yield "ShowFullDate", "the same behind the day's Thai name", on(show_full_date, "D Offset", both)
    yield ("ShowDatetime", "the same before hours and minutes",
           on(lambda d, era: dated("dd/mm/yyyy", d, era) + " " + show_time(d), "D Offset",
              [(m, era) for m in MOMENTS for era in (543, 0)]))
    yield ("ShowMonthYear", "the month's English name and the year",
           on(lambda d, era: f"{ENGLISH_MONTHS[d.month - 1]}, {d.year + era}", "D Offset", both))
    yield ("ShowFullMonthYear", "the month's name and the year: language 0 Thai, 1 English",
           on(show_full_month_year, "D Offset Language",
              [(f"2003-{m:02d}-15", era, language) for m in range(1, 13)
               for era, language in ((543, 0), (0, 1))]))
    yield "ShowTime", "hours and minutes", on(show_time, "D", MOMENTS)
    for name, (layout, era) in FIXED_LAYOUTS.items():
        yield (name, "a fixed layout",
               on(lambda d, layout=layout, era=era: dated(layout, d, era), "D", DATES))
    yield "KovraDateTimeToStr", "a stamp to the minute", on(stamp, "D", MOMENTS)
    yield "KovraTimeStampStr", "a stamp to hundredths of a second", on(time_stamp, "D", MOMENTS)
    ends = "2003-01-31 2004-01-31 2003-03-31 2003-12-31 2003-01-15 2004-02-29 2003-02-28 2003-07-15T14:05".split()
    yield ("ChangeMonth", "the date a month on or back",
           on(lambda d, delta: iso(change_month(d, delta)), "D Delta",
              [(d, delta) for d in ends for delta in (1, -1, 0, 2, -2, 27, 28, -28, 127, -128)]))
    yield ("StrToKovraDate", "a typed date whose years have an offset",
           cases(parse_date, "Text YearOffset", [(t, era) for t in TYPED for era in (543, 0)]))
    yield ("ForceStrToKovraDateAsOf", "a typed date that tells its era by its year",
           cases(force_parse_date, "Text CurrentYear", [(t, 2026) for t in FORCED] + [(FORCED[0], 1546)]))
    yield "KovraStrToDateTime", "a stamp read", cases(read_stamp(1, 5, 7, 9, 11), "S", STAMPS)
    yield "KovraStrToDate", "a stamp's date read", cases(read_stamp(1, 5, 7), "S", STAMPS)
    yield "yyyymmddToDate", "a date key read", cases(read_stamp(1, 6, 9), "S", SEPARATED)


def document():
    lines = []
    for operation, description, rows in itertools.chain(groups(), date_groups()):
        head = json.dumps({"operation": operation, "description": description}, ensure_ascii=False)
        body = ",\n".join("      " + json.dumps(row, ensure_ascii=False) for row in rows)
        lines.append("    " + head[:-1] + ', "cases": [\n' + body + "\n    ]}")
    return '{\n  "version": 1,\n  "groups": [\n' + ",\n".join(lines) + "\n  ]\n}\n"


def main():
    with localcontext() as context:
        context.prec = 60
        text = document()
    if "--check" in sys.argv[1:]:
        sys.exit(0 if TARGET.read_text(encoding="utf-8") == text else f"{TARGET.name} is out of date")
    TARGET.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
