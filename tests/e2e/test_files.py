# SPDX-License-Identifier: MIT
"""Files and folders, served by the program itself."""

import hashlib
import os
from pathlib import Path
from urllib.parse import quote

import pytest

from driver.tailnet import Unreachable

MODES = ("Serve", "Funnel")


@pytest.fixture
def folder(tmp_path):
    """A folder with a file of 5 MB, a file whose name must be escaped, and a subfolder."""
    root = tmp_path / "site"
    (root / "inner").mkdir(parents=True)
    (root / "big.bin").write_bytes(os.urandom(5_000_000))
    (root / "grüße & more.txt").write_text("grüße")
    (root / "inner" / "index.html").write_text("<p>inner")
    return root


def sha256(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


@pytest.mark.parametrize("mode", MODES)
def test_a_folder_is_listed_and_its_files_arrive_whole(window, tailnet, application, folder, mode):
    window.share("Directory", str(folder), mode=mode)
    window.await_row(mode, tailnet.url(""), str(folder))
    for funnel in {False, mode == "Funnel"}:
        listing = tailnet.fetch("/", funnel=funnel)
        assert listing["status"] == 200
        assert listing["headers"]["Content-Type"] == ["text/html; charset=utf-8"]
        assert "big.bin" in listing["body"] and "grüße & more.txt" in listing["body"]
        assert tailnet.fetch("/big.bin", funnel=funnel)["sha256"] == sha256(folder / "big.bin")
        assert tailnet.fetch("/gr%C3%BC%C3%9Fe%20%26%20more.txt", funnel=funnel)["body"] == "grüße"
    assert list(application.managed().values()) == [{"path": str(folder), "type": "directory"}]
    if mode == "Serve":
        with pytest.raises(Unreachable):
            tailnet.fetch("/", funnel=True)


@pytest.mark.parametrize("mode", MODES)
def test_a_file_is_found_below_its_address_which_lists_its_folder(window, tailnet, application, folder, mode):
    file = folder / "big.bin"
    window.share("File", str(file), mode=mode)
    window.await_row(mode, tailnet.url("/big.bin"), str(file))
    for funnel in {False, mode == "Funnel"}:
        # Tailscale strips the mount path before it forwards a request to the file server.
        assert "big.bin" in tailnet.fetch("/big.bin", funnel=funnel)["body"]
        assert tailnet.fetch("/big.bin/big.bin", funnel=funnel)["sha256"] == sha256(file)
        assert tailnet.fetch("/big.bin/inner/", funnel=funnel)["body"] == "<p>inner"
    assert list(application.managed().values()) == [{"path": str(file), "type": "file"}]


@pytest.mark.parametrize("name", ["my report.pdf", "$(touch made).pdf", "it's; touch made & `touch made`.pdf"])
def test_a_name_that_a_shell_would_interpret_is_a_name(window, tailnet, application, tmp_path, name):
    (tmp_path / name).write_bytes(b"%PDF-")
    window.share("File", str(tmp_path / name), path="/")
    window.await_row(str(tmp_path / name))
    # Tailscale only matches such a path if it is escaped the way Go's library does.
    assert tailnet.fetch(2 * quote("/" + name, safe="$&+,/:;=@"))["body"] == "%PDF-"
    assert list(application.managed().values()) == [{"path": str(tmp_path / name), "type": "file"}]
    assert not Path(f"/proc/{application.child.pid}/cwd/made").exists()


def test_a_redirect_below_a_mount_path_loses_it(window, tailnet, folder):
    window.share("Directory", str(folder), path="/docs")
    window.await_row(tailnet.url("/docs"))
    assert tailnet.fetch("/docs/inner/")["body"] == "<p>inner"
    redirect = tailnet.fetch("/docs/inner")
    assert (redirect["status"], redirect["headers"]["Location"]) == (301, ["/inner/"])


def test_a_head_request_has_the_length_and_no_body(window, tailnet, folder):
    window.share("Directory", str(folder))
    window.await_row(tailnet.url(""))
    head = tailnet.fetch("/big.bin", head=True)
    assert (head["status"], head["headers"]["Content-Length"], head["bytes"]) == (200, ["5000000"], 0)


def test_a_folder_that_does_not_exist_is_served_as_not_found(window, tailnet, tmp_path):
    window.share("Directory", str(tmp_path / "nowhere"))
    window.await_row(tailnet.url(""))
    assert tailnet.fetch("/")["status"] == 404


def test_blanks_are_no_folder(window):
    window.fill("Directory", "   ")
    assert not window.start_button().enabled


def test_the_preview_of_a_folder_says_where_it_will_be(window, tailnet):
    window.fill("Directory", "/srv/site", path="/docs")
    assert window.preview() == f"Serves /srv/site/\nat {tailnet.url('/docs')}"
