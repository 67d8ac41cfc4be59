"""The table of what became of all points, as Markdown."""
import re
import subprocess
import time

HEADINGS = ("fault", "points", "ended by itself", "asked, then went on", "closed, slowest", "carried twice",
            "failures")


def row(kind, results):
    fine = [result for result in results if not result["failure"]]
    closings = [seconds for result in results for seconds in result["closings"]]
    twice = "not counted" if kind.destroys else f"{100 * max((r['twice'] for r in fine), default=0):.1f} %"
    return (kind.name, len(results), sum(not r["asked"] for r in fine), sum(r["asked"] for r in fine),
            f"{len(closings)} times, {max(closings):.1f} s" if closings else "-", twice, len(results) - len(fine))


def table(kinds, results):
    """One row a kind, and one for all."""
    rows = []
    for kind in kinds:
        of_kind = [result for result in results if result["kind"] == kind.name]
        if of_kind:
            rows.append(row(kind, of_kind))
    closings = [seconds for result in results for seconds in result["closings"]]
    rows.append(("all", *(sum(r[column] for r in rows) for column in (1, 2, 3)),
                 f"{len(closings)} times, {max(closings, default=0):.1f} s", "", sum(r[6] for r in rows)))
    lines = [HEADINGS, ("---",) * len(HEADINGS), *rows]
    return "\n".join("| " + " | ".join(map(str, line)) + " |" for line in lines)


def failure(result, seed):
    """What somebody needs who wants to understand a failure."""
    story = "\n    ".join(result["story"])
    return (f"FAILED {result['kind']}: {result['failure']}\n"
            f"    tools/fault-matrix --kind {result['kind']} --seed {seed} --point {result['index']}\n    {story}")


def commit():
    return subprocess.run(["git", "rev-parse", "--short", "HEAD"], capture_output=True, text=True, check=True).stdout.strip()


def write(page, text, summary):
    """Puts the table into the page, with the day."""
    place = re.compile("(?<=<!-- faults -->\n).*(?=<!-- end of faults -->)", re.DOTALL)
    told = f"{time.strftime('%Y-%m-%d')}, {summary}."
    page.write_text(place.sub(lambda _: f"\n{told}\n\n{text}\n\n", page.read_text("utf-8")), "utf-8")
