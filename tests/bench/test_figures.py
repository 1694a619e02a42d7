# SPDX-License-Identifier: MIT
"""What the benchmarks make of their figures: which comparison counts, and what is kept of it."""

import argparse
import json
import pathlib
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench"))
from httpbench import slices  # noqa: E402
from httpbench.comparison import Failed, Figure  # noqa: E402


def by_name(figure, values):
    return {line["name"]: line for line in figure.lines(values)}


def test_the_plain_name_is_the_comparison_with_the_better_nginx():
    lines = by_name(Figure("m", "µs", 1), {"brevane": 30.0, "nginx-small": 40.0, "nginx-large": 25.0, "lighttpd": 20.0, "limit": 10.0})
    assert (lines["m"]["peer"], lines["m"]["ratio"]) == ("nginx", 1.2)
    assert lines["m.nginx-small"]["ratio"] == 0.75
    assert lines["m.limit"]["ratio"] == 3.0


def test_the_fastest_peer_is_the_one_with_the_most_where_more_is_better():
    figure = Figure("m", "MB/s", 1, beside="fastest", wanted=1.0, more_is_better=True)
    lines = by_name(figure, {"brevane": 30.0, "nginx-small": 40.0, "lighttpd": 60.0, "limit": 100.0})
    assert (lines["m"]["peer"], lines["m"]["ratio"], lines["m"]["wanted"]) == ("lighttpd", 0.5, ">= 1.0")


def test_without_the_named_peer_the_plain_name_is_not_given():
    assert list(by_name(Figure("m", "µs", 1), {"brevane": 30.0, "lighttpd": 60.0})) == ["m.lighttpd"]


@pytest.mark.parametrize("result", [{"errors": 1, "done": 9, "bytes": 9000}, {"errors": 0, "done": 0, "bytes": 0}])
def test_an_error_of_a_slice_or_an_empty_one_fails_the_measure(result):
    with pytest.raises(Failed):
        slices.refuse_errors(argparse.Namespace(name="nginx-small"), result)


@pytest.fixture
def publish(tmp_path):
    def run(*lines):
        given, results = tmp_path / "lines.json", tmp_path / "results.json"
        given.write_text("\n".join(map(json.dumps, lines)))
        table = subprocess.run([sys.executable, ROOT / "script/bench-results.py", given, results],
                               check=True, capture_output=True, text=True).stdout
        return json.loads(results.read_text()), table
    return run


def line(name, ratio, peer="nginx", **more):
    return {"name": name, "value": ratio * 10, "unit": "µs", "peer": peer, "peer_value": 10.0, "ratio": ratio, **more}


def test_several_runs_are_published_with_their_middle_and_their_range(publish):
    results, table = publish(*(line("m", ratio, wanted="<= 1.0") for ratio in (0.9, 1.3, 1.1)))
    assert [(each["ratio"], each["ratio_range"]) for each in results] == [(1.1, [0.9, 1.3])]
    assert "1.1 (0.9 to 1.3)" in table and "MISSED" in table


def test_a_newer_figure_takes_the_place_of_the_older_whoever_the_peer_was(publish):
    publish(line("m", 1.0, wanted="<= 2", peer="nginx"), line("other", 1.0))
    results, _ = publish(line("m", 2.0, wanted="<= 2", peer="lighttpd"))
    assert [(each["name"], each["peer"]) for each in results] == [("m", "lighttpd"), ("other", "nginx")]


def test_a_measure_that_failed_once_has_no_figures(publish):
    publish(line("m", 1.0), line("m.lighttpd", 1.0, peer="lighttpd"))
    results, table = publish(line("m", 1.0), {"name": "m", "failed": "nginx-small: 1 requests of 9 failed"})
    assert results == []
    assert "m FAILED: nginx-small: 1 requests of 9 failed" in table


def test_comparisons_with_itself_stand_apart(publish):
    _, table = publish(line("with-others", 1.0), line("with-itself", 1.0, peer="brevane, none idle"))
    assert table.index("with-others") < table.index("Beside itself") < table.index("with-itself")
