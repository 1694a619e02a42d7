# SPDX-License-Identifier: MIT
"""What happens to shares if the disk of their record fails."""

import json
import os
import shutil

import pytest

from driver import backends
from driver.mounts import FullDisk, HungDisk, Mounts, ReadOnlyDisk
from driver.waiting import until

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="needs root, to mount file systems")

# Quitting may take two seconds; the rest is for a machine that runs other tests meanwhile.
PATIENCE = 2 + 1


@pytest.fixture
def mounts(application):
    with Mounts() as mounts:
        application.mounts = mounts
        yield mounts


@pytest.fixture
def config(application, mounts):
    """The folder of the record, created empty."""
    folder = application.desktop.folder / "config" / "brevane"
    folder.mkdir(mode=0o700)
    return folder


@pytest.fixture
def folders(tmp_path):
    """Two folders to share, with a file in each."""
    found = [tmp_path / "one", tmp_path / "two"]
    for folder in found:
        folder.mkdir()
        (folder / "a.txt").write_text(folder.name)
    return found


def share(window, folder):
    window.share("Directory", str(folder), path=f"/{folder.name}")


def assert_alive(application, tailnet, folders):
    """All folders are recorded, and after a restart they are served."""
    assert {entry["path"] for entry in application.managed().values()} == {str(folder) for folder in folders}
    window = application.start()
    for folder in folders:
        window.await_row(f"/{folder.name}", str(folder))
        assert tailnet.fetch(f"/{folder.name}/a.txt")["body"] == folder.name
    assert window.error() is None


@pytest.fixture(params=[FullDisk, ReadOnlyDisk])
def failing(request, application, mounts, config, folders):
    """A failed disk whose record has one share; a second one has been made since the failure."""
    disk = request.param(mounts, config)
    window = application.start()
    share(window, folders[0])
    record = application.managed()
    disk.fail()
    share(window, folders[1])
    assert window.await_error() == f"Shares could not be saved: {disk.reason}"
    assert application.managed() == record
    return disk


def test_a_share_is_recorded_by_the_next_refresh_after_the_disk_is_well(failing, application, tailnet, folders):
    assert tailnet.fetch("/two/a.txt")["body"] == "two"
    window = application.window
    window.refresh()
    assert window.await_error() == f"Shares could not be saved: {failing.reason}"
    failing.recover()
    window.refresh()
    until("the record", lambda: len(application.managed()) == 2)
    assert window.error() is None
    assert application.quit() == 0
    assert_alive(application, tailnet, folders)


def test_a_share_is_recorded_at_quitting_after_the_disk_is_well(failing, application, tailnet, folders):
    failing.recover()
    assert application.quit() == 0
    assert_alive(application, tailnet, folders)


def test_a_record_whose_disk_is_mounted_after_the_start_is_served_and_kept(application, tailnet, mounts, config, folders, tmp_path):
    share(application.start(), folders[0])
    assert application.quit() == 0
    kept = shutil.move(config, tmp_path / "disk")
    record = json.loads((kept / "preferences.json").read_text())
    record["TailscaleManagedServers"]["1"] = 7  # malformed, but must be kept too
    (kept / "preferences.json").write_text(json.dumps(record))
    config.mkdir(mode=0o700)

    window = application.start()
    window.await_row("/one")
    assert tailnet.fetch("/one/a.txt")["status"] == 502
    mounts.mount("--bind", kept, config)
    window.refresh()
    until("the folder to be served", lambda: tailnet.fetch("/one/a.txt").get("body") == "one")
    share(window, folders[1])
    until("both to be recorded", lambda: len(application.managed()) == 3)
    assert application.managed().pop("1") == 7
    ports = [int(port) for port in application.managed() if port != "1"]
    assert all(backends.listens(port) for port in ports)


@pytest.fixture
def hang(pytestconfig, mounts, config):
    """Returns a function that mounts a hanging disk over the record's folder."""
    disks = []

    def mount():
        disks.append(HungDisk(pytestconfig.getoption("--hung-disk"), mounts, config))
        return disks[-1]

    yield mount
    for disk in disks:
        disk.end()


def assert_quits(application, disk, ports=()):
    application.desktop.key("ctrl+w")
    until(
        "the window to go, and its servers",
        lambda: not application.desktop.windows(application.child.pid) and not any(map(backends.listens, ports)),
        patience=PATIENCE,
    )
    # The kernel keeps a process while one of its threads waits for a request that the file system has read.
    disk.end()
    assert application.child.wait(10) == 0


def test_the_window_comes_while_the_disk_hangs_and_quits(application, hang):
    disk = hang()
    window = application.start()
    disk.await_question()
    window.await_empty()
    assert_quits(application, disk)


def test_a_share_under_way_while_the_disk_hangs_holds_up_neither_window_nor_quitting(application, hang, folders):
    window = application.start()
    share(window, folders[0])
    ports = [int(port) for port in application.managed()]
    disk = hang()
    window.fill("Directory", str(folders[1]), path="/two")
    window.start()
    disk.await_question()
    window.fill("Plain Text", "answers", path="/three")
    assert window.preview().endswith("text:answers")
    assert_quits(application, disk, ports)


def test_a_hanging_disk_does_not_keep_the_next_start_from_its_window(application, hang):
    disk = hang()
    application.start()
    disk.await_question()
    first = application.child
    application.desktop.key("ctrl+w")
    until("the window to go", lambda: not application.desktop.windows(first.pid), patience=PATIENCE)
    application.start().await_empty()
    disk.end()
    assert first.wait(10) == 0
