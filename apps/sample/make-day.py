#!/usr/bin/env python3
"""Writes day.csv: one business day of a wholesaler of household goods and stationery.

The same file comes out on every run, so that a change of this script shows as a change of the day.
Run it in this folder: ./make-day.py > day.csv
"""

import csv
import random
import sys

DAY_ISO = "2026-11-24"
DAY_THAI = "24/11/2569"  # the tills write the Buddhist era
INVOICES = 220
CREDIT_NOTES = 6

SHOPS = ["ร้านเจริญพาณิชย์", "ร้านสมบูรณ์การค้า", "ร้านป้าแดงของชำ", "ร้านรุ่งเรืองทรัพย์", "ร้านน้องแพรเครื่องเขียน",
         "ร้านศรีสุขมินิมาร์ท", "ร้านเพื่อนเรียน", "ร้านโชคอนันต์", "ร้านบ้านสวนวัสดุ", "ร้านทวีผลพาณิชย์"]
COMPANIES = ["บริษัท สยามรุ่งกิจ จำกัด", "บริษัท ไทยเจริญซัพพลาย จำกัด", "บริษัท นำชัยก่อสร้าง จำกัด (สำนักงานใหญ่)",
             "บริษัท กรุงทองโลจิสติกส์ จำกัด", "บริษัท อาหารดีเด่น จำกัด (มหาชน)", "ห้างหุ้นส่วนจำกัด พูนผลเครื่องเขียน",
             "ห้างหุ้นส่วนจำกัด ช.การไฟฟ้า", "Chao Phraya Trading Co., Ltd.", "Blue Elephant Guest House"]
INSTITUTIONS = ["โรงเรียนวัดใหม่พิทักษ์", "โรงพยาบาลศรีนคร", "สำนักงานเทศบาลตำบลบางพลับ", "วิทยาลัยเทคนิคสุวรรณ"]
FIRST = ["สมชาย", "สุดารัตน์", "วิชัย", "กัญญา", "ประเสริฐ", "มาลี", "อนุชา", "พรทิพย์", "ธนากร", "จันทร์เพ็ญ"]
LAST = ["ใจดี", "ศรีสวัสดิ์", "แก้วมณี", "ทองสุข", "บุญมา", "วงศ์ไทย", "รักษาธรรม", "พึ่งพงษ์"]

# item, price in satang, VAT per cent, usual quantities (in ten-thousandths where not whole)
GOODS = [
    ("กระดาษถ่ายเอกสาร A4 80 แกรม (รีม)", 11500, 7, [1, 2, 5, 10, 50]),
    ("ปากกาลูกลื่น สีน้ำเงิน 0.5 มม. (โหล)", 6000, 7, [1, 2, 3, 6]),
    ("แฟ้มสันกว้าง 3\" สีดำ", 7250, 7, [2, 4, 12, 24]),
    ("เทปใส 1/2\" x 36 หลา", 1350, 7, [1, 6, 12]),
    ("สมุดปกแข็ง 100 แผ่น", 3875, 7, [1, 5, 10, 40]),
    ("หมึกพิมพ์เลเซอร์ สีดำ", 189000, 7, [1, 2, 3]),
    ("ผงซักฟอก 2,700 กรัม", 21950, 7, [1, 3, 6, 12]),
    ("น้ำยาล้างจาน 3.6 ลิตร", 13400, 7, [1, 2, 4]),
    ("กระดาษชำระ 24 ม้วน", 24900, 7, [1, 2, 10]),
    ("ถุงขยะดำ 30 x 40 นิ้ว (กก.)", 6225, 7, ["0.5", "1.25", "2.5", "10"]),
    ("หลอดไฟ LED 12 วัตต์ ขั้ว E27", 8900, 7, [1, 2, 10, 36]),
    ("สายไฟ VAF 2 x 2.5 ตร.มม. (เมตร)", 2475, 7, ["7.5", "12.25", "30", "100"]),
    ("ปลั๊กพ่วง 5 ช่อง 3 เมตร", 32500, 7, [1, 2, 5]),
    ("สีน้ำอะคริลิก สีขาว 9 ลิตร", 126500, 7, [1, 2, 4]),
    ("ปูนซีเมนต์ 50 กก.", 14850, 7, [5, 10, 20, 100]),
    ("ตะปู 2 นิ้ว (กก.)", 4633, 7, ["0.75", "1.5", "3.2"]),
    ("พัดลมตั้งพื้น 16 นิ้ว", 89900, 7, [1, 2, 3]),
    ("เครื่องคิดเลข 12 หลัก", 34500, 7, [1, 2, 6]),
    ("กาแฟสำเร็จรูป 200 กรัม", 15975, 7, [1, 2, 12]),
    ("น้ำดื่ม 600 มล. (แพ็ค 12 ขวด)", 4700, 7, [1, 2, 10, 30]),
    ("ข้าวหอมมะลิ 5 กก.", 21500, 0, [1, 2, 10]),
    ("ไข่ไก่ เบอร์ 2 (แผง)", 11800, 0, [1, 3, 5]),
    ("ผักกาดขาว (กก.)", 3250, 0, ["0.8", "1.35", "4.6", "12.45"]),
    ("มะนาว (กก.)", 5500, 0, ["0.5", "1.1", "2.75"]),
    ("ตำราเรียน ชุดบัญชีเบื้องต้น", 28500, 0, [1, 10, 35]),
    ("ค่าจัดส่ง", 15000, 7, [1]),
    ("โน้ตบุ๊ก \"รุ่นสำนักงาน\" จอ 14 นิ้ว, แรม 16 GB", 2199000, 7, [1, 2, 8]),
    ("เก้าอี้สำนักงาน มีที่พักแขน", 345000, 7, [1, 4, 12]),
]

STREETS = ["ถนนสุขุมวิท แขวงพระโขนง เขตคลองเตย กรุงเทพฯ 10110", "ถนนพระราม 4 แขวงสีลม เขตบางรัก กรุงเทพฯ 10500",
           "ถนนรัตนาธิเบศร์ อ.เมือง จ.นนทบุรี 11000"]
REASON = "สินค้าชำรุด"

rng = random.Random(2569)


def money(satang):
    return f"{satang // 100}.{satang % 100:02d}"


def customer():
    kind = rng.random()
    if kind < 0.35:
        return rng.choice(SHOPS)
    if kind < 0.65:
        return rng.choice(COMPANIES)
    if kind < 0.75:
        return rng.choice(INSTITUTIONS)
    if kind < 0.9:
        return f"คุณ{rng.choice(FIRST)} {rng.choice(LAST)}"
    return ""  # cash over the counter


def tax_id(number):
    """Thirteen digits with their check digit, of no real company."""
    digits = f"0999900000{number:02d}"
    return digits + str((11 - sum(int(d) * (13 - i) for i, d in enumerate(digits)) % 11) % 10)


def buyer(name):
    """Address, tax number and branch; only companies ask for a full tax invoice."""
    if name not in COMPANIES:
        return ["", "", ""]
    number = COMPANIES.index(name) + 1
    return [f"{number * 7}/{number} {STREETS[number % len(STREETS)]}", tax_id(number), "00000"]


def discount(price, quantity):
    """Satang off a line, mostly none: some per cent, or a round amount."""
    gross = int(price * float(quantity))
    kind = rng.random()
    if kind < 0.75 or gross < 2000:
        return 0
    if kind < 0.9:
        return gross * rng.choice([3, 5, 10]) // 100
    return min(gross, rng.choice([500, 1000, 2500, 10000]))


def sale():
    rows = []
    for item, price, vat, quantities in rng.sample(GOODS, rng.choice([1, 1, 2, 2, 3, 3, 4, 5, 6, 8])):
        quantity = str(rng.choice(quantities))
        off = discount(price, quantity)
        rows.append([item, quantity, money(price), money(off) if off else "", str(vat)])
    return rows


def grouped(price):
    """A price with thousands, as the office's own program writes it."""
    whole, satang = price.split(".")
    return f"{int(whole):,}.{satang}"


def credit(rows):
    """The same lines taken back."""
    return [[item, "-" + quantity, price, "-" + off if off else "", vat]
            for item, quantity, price, off, vat in rows]


def main():
    out = csv.writer(sys.stdout, lineterminator="\n")
    out.writerow(["document", "date", "customer", "item", "quantity", "price", "discount", "vat",
                  "address", "tax_id", "branch", "reference", "reference_date", "reason"])
    returns = set(rng.sample(range(20, INVOICES), CREDIT_NOTES))
    credits = 0
    for number in range(1, INVOICES + 1):
        till = rng.random() < 0.4
        name = customer()
        rows = sale()
        day = DAY_THAI if till else DAY_ISO
        document = f"{'CS' if till else 'IV'}6911-{number:04d}"
        said = buyer(name) + ["", "", ""]  # on the first row
        for item, quantity, price, off, vat in rows:
            shown = price if till else grouped(price)
            out.writerow([document, day, name, item, quantity, shown, off, vat, *said])
            said = [""] * 6
        if number in returns:
            credits += 1
            said = buyer(name) + [document, day, REASON]
            for row in credit(rows):
                out.writerow([f"CN6911-{credits:04d}", day, name, *row, *said])
                said = [""] * 6


if __name__ == "__main__":
    main()
