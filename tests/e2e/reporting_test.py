import csv
import subprocess

from support import WindowTest, main


class Reporting(WindowTest):
    def writesAllThreeReports(self):
        self.window.start(self.demo_files())
        for kind in ("PDF", "CSV", "ALE"):
            self.window.write_report(kind, str(self.folder / ("report." + kind.lower())))
        with open(self.folder / "report.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual(len(rows), 8)
        self.assertEqual({row["Scene"] for row in rows}, {"12A", "12B", "31", "44"})
        ale = (self.folder / "report.ale").read_text(encoding="utf-8")
        self.assertTrue(ale.startswith("Heading\nFIELD_DELIM\tTABS\n"))
        pdf = subprocess.run(["pdftotext", str(self.folder / "report.pdf"), "-"], check=True, capture_output=True,
                             text=True).stdout
        self.assertIn("Rain on the roof", pdf)
        self.assertEqual(self.settings()["soundreport.outputFormat"], "2")
        self.assert_printed_nothing()


main()
