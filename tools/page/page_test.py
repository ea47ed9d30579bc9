#!/usr/bin/env python3
"""page_test.py - tests of the page that run.sh makes: what is no record of a whole flight is refused, a page that lacks
something is none, what happened is told as it was. Needs nothing but Python; a test's name is false when it fails."""
import os
import tempfile
import unittest

import drawing
import page
import record

FLIGHT = """flight-record 1
0	flight	short	the built-in aircraft
0	channel		Lobby
10	leg		Calling delivery
300	link	down	waiting
500	link	up	CONNECTED
500	active	COM2	118000
500	active	COM1	121600
500	active	COM2	121500
500	standby	COM1	0
900	request		Clearance Delivery 121.600
940	channel		Clearance Delivery 121.600
950	check	ok	followed
950	check	ok	asked once
1000	message	Delivery	CLEARED <TO> "EDDF" & BACK
1010	sound		text_alert.wav
2000	check	ok	chime
2000	leg		Departure refuses
2000	check	ok	still in the channel
2100	active	COM1	124350
2500	request		Departure 124.350
2650	refusal	server	error 2568
2700	talk	pilot	on
2730	lamp	TX	on
2950	talk	pilot	off
2990	lamp	TX	off
3000	pilot		swaps
3100	answer	aircraft	done
3200	link	down	lost
3200	active	COM1	0
3900	link	up	CONNECTED
3900	active	COM1	124350
4600	request		Departure 124.350
4650	channel		Lobby
4900	request		118,275 Approach
5000	check	failed	asked again
5100	end	4	5
"""
PNG = page.HEADS[".png"] + b"picture"
SVG = b"<svg/>"
WAV = b"RIFF" + bytes(page.WAV_HEADER) + b"sound"
CONTENT = {".png": PNG, ".svg": SVG, ".wav": WAV}


def without(kind):
    """The flight without this kind of event, its end counted accordingly."""
    lines = [line for line in FLIGHT.splitlines() if f"\t{kind}\t" not in line]
    if kind == "check":
        lines[-1] = "5100\tend\t0\t0"
    return "\n".join(lines) + "\n"


class RecordTest(unittest.TestCase):
    def refused(self, text, why):
        with self.assertRaisesRegex(record.RecordError, why):
            record.parse(text)

    def test_takes_a_whole_flight(self):
        self.assertEqual(len(record.parse(FLIGHT)), 36)

    def test_refuses_what_is_no_record(self):
        for text in ("", "\n", "flight-record 2\n" + FLIGHT.split("\n", 1)[1], FLIGHT.split("\n", 1)[1]):
            self.refused(text, "first line")

    def test_refuses_a_flight_cut_after_any_line(self):
        lines = FLIGHT.splitlines(True)
        for count in range(len(lines)):
            with self.assertRaises(record.RecordError):
                record.parse("".join(lines[:count]))

    def test_refuses_a_damaged_line(self):
        for damaged in ("10 leg\tCalling", "10\tleg\t\ta\tb", "-1\tleg\t\ta", "\tleg\t\ta", "1.5\tleg\t\ta"):
            self.refused(FLIGHT.replace("10\tleg\t\tCalling delivery", damaged), "is no event")

    def test_refuses_what_no_flight_has(self):
        self.refused(FLIGHT.replace("\tpilot\t\tswaps", "\tpilots\t\tswaps"), "unknown event")
        self.refused(FLIGHT.replace("active\tCOM2", "active\tCOM3"), "COM3")
        self.refused(FLIGHT.replace("121500", "117975"), "117975")
        self.refused(FLIGHT.replace("121500", "many"), "many")
        self.refused(FLIGHT.replace("TX\toff", "TX\tdim"), "dim")
        self.refused(FLIGHT.replace("lamp\tTX\toff", "lamp\tTX\ton"), "twice")
        self.refused(FLIGHT.replace("2700\ttalk\tpilot\ton", "2700\ttalk\tpilot\toff"), "twice")
        self.refused(FLIGHT.replace("2950\ttalk\tpilot\toff\n", ""), "never stops talking")
        self.refused(FLIGHT.replace("900\trequest", "901\trequest").replace("500\tlink", "902\tlink"), "stands after")
        self.refused(FLIGHT.replace("1000\tmessage", "1000\trefusal\tserver\tno\n1000\tmessage")
                     .replace("900\trequest\t\tClearance Delivery 121.600\n", ""), "nobody asked")

    def test_refuses_a_flight_without_something_for_each_lane(self):
        for kind in record.NEEDED:
            if kind != "request":
                self.refused(without(kind), f"kind '{kind}'")
        self.refused(without("request"), "kind 'request'")

    def test_refuses_an_end_that_counts_other_checks(self):
        for end in ("5\t5", "4\t4", "3\t5"):
            self.refused(FLIGHT.replace("end\t4\t5", "end\t" + end), "counts")


class MeaningTest(unittest.TestCase):
    def setUp(self):
        self.events = record.parse(FLIGHT)

    def test_a_frequency_lasts_until_the_next(self):
        self.assertEqual(record.frequencies(self.events, "COM1"), [(500, 2100, 121600), (2100, 3200, 124350),
                                                                       (3900, 5100, 124350)])
        self.assertEqual(record.frequencies(self.events, "COM2"), [(500, 5100, 121500)])

    def test_a_request_has_the_outcome_that_follows_it(self):
        told = [(request.start, request.end, request.outcome) for request in record.requests(self.events)]
        self.assertEqual(told, [(900, 940, "moved"), (2500, 2650, "refused"), (4600, 4900, "unanswered"),
                                (4900, 5100, "unanswered")])

    def test_a_leg_has_its_own_checks(self):
        told = [(leg.title, [check.value for check in leg.checks]) for leg in record.legs(self.events)]
        self.assertEqual(told, [("Calling delivery", ["followed", "asked once", "chime"]),
                                ("Departure refuses", ["still in the channel", "asked again"])])

    def test_the_link_is_lost_only_after_it_was_there(self):
        self.assertEqual(record.link_losses(self.events), [(3200, 3900, "lost")])

    def test_talk_and_lamps_last_from_on_to_off(self):
        self.assertEqual(record.on_spans(self.events, "talk", "pilot"), [(2700, 2950, "on")])
        self.assertEqual(record.on_spans(self.events, "lamp", "TX"), [(2730, 2990, "on")])
        self.assertEqual(record.on_spans(self.events, "lamp", "RX"), [])

    def test_everything_that_happened_is_drawn(self):
        svg = drawing.draw(self.events)
        for title in ("COM1 active 121.600", "COM1 active 124.350", "COM2 active 121.500", "in “Lobby”",
                      "asks for “Departure 124.350” at 2.50 s: refused 150 ms later", "no answer for 0.3 s",
                      "the server refuses: error 2568", "CLEARED &lt;TO&gt; &quot;EDDF&quot; &amp; BACK",
                      "plays text_alert.wav", "pilot talks for 250 ms", "TX lamp lit for 260 ms",
                      "no link to the simulator"):
            self.assertIn(title, svg)


class PageTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.out = os.path.join(folder.name, "out")
        self.package = os.path.join(folder.name, "corvalis-1.0.0.ts3_plugin")
        os.makedirs(os.path.join(self.out, "pictures"))
        self.write(self.package, b"package")
        self.write("flight.tsv", FLIGHT.encode())
        self.files = [f"pictures/{name}" for name, _ in page.WINDOWS]
        for picture, _, players in page.VOICE + page.SOUNDS:
            self.files += [picture] + [file for file, _ in players]
        for name in self.files:
            self.write(name, CONTENT[os.path.splitext(name)[1]])

    def write(self, name, content):
        with open(os.path.join(self.out, name), "wb") as file:
            file.write(content)

    def problems(self, is_full=False, has_restarts=False):
        made = page.Page(self.out, self.package, is_full, has_restarts)
        self.html = made.html()
        made.check_references(self.html)
        return made.problems

    def test_lacks_nothing_when_all_is_there(self):
        self.assertEqual(self.problems(), [])
        for name in self.files:
            self.assertIn(f'src="{name}"', self.html)

    def test_names_nothing_outside_its_folder(self):
        self.problems()
        outside = r"https?://|url\(|@import|<link|<script"
        self.assertNotRegex(self.html.replace('xmlns="http://www.w3.org/2000/svg"', ""), outside)

    def test_names_nothing_that_is_not_there_and_leaves_nothing_out(self):
        made = page.Page(self.out, self.package, False, False)
        html = made.html()
        made.check_references(html + '<img src="other.png"><a href="../corvalis-1.0.0.ts3_plugin">')
        self.assertEqual([problem.split(",")[0] for problem in made.problems],
                         ["the page names ../corvalis-1.0.0.ts3_plugin", "the page names other.png"])
        made.problems.clear()
        made.check_references(html.replace("radio_tail.wav", "text_alert.wav"))
        self.assertEqual(made.problems, ["radio_tail.wav is not on the page"])

    def test_misses_each_picture_and_each_sound(self):
        for name in self.files:
            os.rename(os.path.join(self.out, name), os.path.join(self.out, "elsewhere"))
            self.assertEqual(self.problems(), [f"{name} is missing"])
            for damaged in (b"", b"other"):
                self.write(name, damaged)
                self.assertEqual(self.problems(), [f"{name} is damaged"])
            os.rename(os.path.join(self.out, "elsewhere"), os.path.join(self.out, name))

    def test_hears_that_a_sound_is_silent(self):
        self.write("radio_tail.wav", b"RIFF" + bytes(1000))
        self.assertEqual(self.problems(), ["radio_tail.wav is silent"])

    def test_misses_the_record_and_the_package(self):
        self.write("flight.tsv", b"")
        os.unlink(self.package)
        named = [problem.split(":")[0] for problem in self.problems()]
        self.assertEqual(named, ["flight.tsv", f"{self.package} is missing"])
        self.assertIn("FAILED", self.html)

    def test_of_a_full_run_has_the_own_voice_and_all_pictures(self):
        missing = ["pictures/ has none of the other pictures", "voice_own.svg is missing", "voice_own.wav is missing"]
        self.assertEqual(self.problems(is_full=True), missing)
        self.write("voice_own.svg", SVG)
        self.write("voice_own.wav", WAV)
        self.write("pictures/panel_boeing_lamps_150.png", PNG)
        self.assertEqual(self.problems(is_full=True), [])
        self.assertIn('src="pictures/panel_boeing_lamps_150.png"', self.html)

    def test_with_restarts_has_their_timeline(self):
        self.assertEqual(self.problems(has_restarts=True), ["restarts.txt is missing"])
        self.write("restarts.txt", b"Restarts survived")
        self.assertEqual(self.problems(has_restarts=True), [])
        self.assertIn("Restarts survived", self.html)


if __name__ == "__main__":
    unittest.main()
