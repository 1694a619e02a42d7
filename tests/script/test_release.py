# SPDX-License-Identifier: MIT
"""script/version reads the version from the tag, and script/release publishes what belongs to it."""

import hashlib
import shutil
import subprocess
from pathlib import Path

import pytest

PROJECT = Path(__file__).parents[2]
CHANGES = "# Changes\n\n## Unreleased\n\n- Later.\n\n## 0.2.0\n\n- Better.\n\n## 0.1.0\n\n- First.\n"


class Repository:
    def __init__(self, folder):
        self.folder = folder
        shutil.copytree(PROJECT / "script", folder / "script")
        (folder / "CMakeLists.txt").write_text('set(BREVANE_VERSION 0.1.0 CACHE STRING "")\n')
        (folder / "CHANGELOG.md").write_text(CHANGES)
        (folder / "build").mkdir()
        self.git("init", "-q")
        self.commit()

    def git(self, *words):
        identity = ["-c", "user.name=Test", "-c", "user.email=test@example.org"]
        subprocess.run(["git", *identity, *words], cwd=self.folder, check=True)

    def commit(self):
        self.git("commit", "-q", "--allow-empty", "-m", "Change something")

    def run(self, script, *words):
        result = subprocess.run([self.folder / "script" / script, *words], capture_output=True, text=True)
        return result.returncode, result.stdout + result.stderr


@pytest.fixture
def repository(tmp_path):
    return Repository(tmp_path / "a checkout")


def test_without_a_tag_the_version_is_that_of_cmake(repository):
    assert repository.run("version") == (0, "0.1.0\n")


def test_the_version_is_that_of_the_tag(repository):
    repository.git("tag", "v0.2.0")
    assert repository.run("version") == (0, "0.2.0\n")


def test_behind_a_tag_the_commits_are_counted(repository):
    repository.git("tag", "v0.2.0")
    repository.commit()
    repository.commit()
    assert repository.run("version") == (0, "0.2.0.2\n")


def test_the_checkout_may_belong_to_someone_else(repository, monkeypatch):
    # As in a container, whose root did not make it.
    repository.git("tag", "v0.2.0")
    monkeypatch.setenv("GIT_TEST_ASSUME_DIFFERENT_OWNER", "1")
    assert repository.run("version") == (0, "0.2.0\n")


def test_other_tags_do_not_count(repository):
    repository.git("tag", "nightly")
    assert repository.run("version") == (0, "0.1.0\n")


def test_a_tag_that_is_no_version_is_refused(repository):
    repository.git("tag", "v2-beta")
    status, words = repository.run("version")
    assert status == 1
    assert "'2-beta' is no version" in words


def test_the_notes_are_those_of_the_version(repository):
    repository.git("tag", "v0.2.0")
    assert repository.run("version", "--notes") == (0, "\n- Better.\n")


def test_a_version_without_notes_fails(repository):
    repository.git("tag", "v0.3.0")
    status, words = repository.run("version", "--notes")
    assert status == 1
    assert "CHANGELOG.md says nothing of 0.3.0" in words


def files(repository, *names):
    folder = repository.folder / "build/files"
    folder.mkdir()
    for name in names:
        (folder / name).write_text(name)
    return folder


def test_a_release_has_its_checksums_and_its_notes(repository):
    repository.git("tag", "v0.2.0")
    names = ["a.deb", "b.dmg", "b.dmg.spdx.json"]
    folder = files(repository, *names)
    status, words = repository.run("release", "--dry-run", str(folder))
    assert status == 0, words
    assert words.startswith("gh release create v0.2.0 --verify-tag --title Brevane 0.2.0 --notes-file build/release-notes.md ")
    sums = "".join(f"{hashlib.sha256(name.encode()).hexdigest()}  {name}\n" for name in names)
    assert (folder / "SHA256SUMS").read_text() == sums
    assert (repository.folder / "build/release-notes.md").read_text() == "\n- Better.\n"


def test_a_release_lacks_nothing(repository):
    repository.git("tag", "v0.2.0")
    status, words = repository.run("release", "--dry-run", str(files(repository, "a.deb", "a.deb.spdx.json")))
    assert status == 1
    assert "there is no *.dmg" in words


def test_only_what_has_a_tag_is_released(repository):
    repository.git("tag", "v0.2.0")
    repository.commit()
    status, words = repository.run("release", "--dry-run", str(files(repository, "a.deb")))
    assert status == 1
    assert "no tag" in words
