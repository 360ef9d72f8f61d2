"""Checks the pages of docs/ and the README: pages.py PROJECT RUNNER; pages.py PROJECT puts the samples into them anew.

- Every C++ fence shows a sample, which is compiled and run: the line before it names it, `<!-- sample: FILE -->` or
  `<!-- sample: FILE REGION -->`, the file from docs/samples/, the region from the line `// [REGION]` to the next such
  line. Fences of other languages may show a file, too.
- A fence after the line `<!-- excerpt: FILE -->` shows lines of FILE, a path from the top folder.
- The commands of the runner that are shown have the options that they are shown with.
- What is linked to is there.
"""

import re
import subprocess
import sys
import textwrap
from pathlib import Path

FENCE = re.compile(r"^(?P<before>[^\n]*)\n```(?P<language>\w*)\n(?P<text>.*?)^```$", re.MULTILINE | re.DOTALL)
SAMPLE = re.compile(r"^<!-- sample: (?P<file>\S+)(?: (?P<region>\S+))? -->$")
EXCERPT = re.compile(r"^<!-- excerpt: (?P<file>\S+) -->$")
REGION_MARK = re.compile(r"^\s*// \[([\w-]+)\]$")
COMMAND = re.compile(r"^(?: {4})?(?:\$ )?(?:\S*/)?vexa-standin (?P<name>[a-z]+)(?P<rest>.*)$", re.MULTILINE)
OPTION = re.compile(r"(?<=\s)--[a-z][a-z0-9-]*")
LINK = re.compile(r"\]\((?P<target>[^)#\s]+)[^)]*\)")


def region_of(text, region):
    """The lines of a region, without marks and common indentation; None when there is no such region."""
    lines, inside, found = [], region is None, region is None
    for line in text.splitlines():
        mark = REGION_MARK.match(line)
        if not mark:
            if inside:
                lines.append(line)
        elif mark.group(1) == region:
            inside, found = not inside, True
    return textwrap.dedent("\n".join(lines)).strip("\n") + "\n" if found else None


def fence_mistakes(text, samples):
    """What is wrong with the fences of a page, `samples` being the folder of what they show."""
    for fence in FENCE.finditer(text):
        line = text.count("\n", 0, fence.start("language")) + 1
        sample = SAMPLE.match(fence["before"])
        if not sample:
            if fence["language"] == "cpp" and not EXCERPT.match(fence["before"]):
                yield line, "C++ without a sample: the line before has to be <!-- sample: FILE REGION -->"
            continue
        path = samples / sample["file"]
        if not path.is_file():
            yield line, f"there is no {path}"
            continue
        expected = region_of(path.read_text(), sample["region"])
        if expected is None:
            yield line, f"{path} has no region {sample['region']}"
        elif expected != fence["text"]:
            yield line, f"it differs from {sample['file']} {sample['region'] or ''}, where stands:\n{expected}"


def excerpt_mistakes(text, project):
    """The excerpts of a page whose files do not have these lines."""
    for fence in FENCE.finditer(text):
        excerpt = EXCERPT.match(fence["before"])
        if not excerpt:
            continue
        path = project / excerpt["file"]
        line = text.count("\n", 0, fence.start("language")) + 1
        if not path.is_file():
            yield line, f"there is no {path}"
        elif "\n" + fence["text"] not in "\n" + path.read_text():
            yield line, f"{path} has no such lines"


def renewed(text, samples):
    """The page with its samples as they are now."""

    def show(fence):
        sample = SAMPLE.match(fence["before"])
        shown = sample and region_of((samples / sample["file"]).read_text(), sample["region"])
        return f"{fence['before']}\n```{fence['language']}\n{shown}```" if shown else fence[0]

    return FENCE.sub(show, text)


def command_mistakes(text, help_of):
    """What is wrong with the runner's commands on a page, `help_of` telling of one; None when there is none."""
    for command in COMMAND.finditer(text):
        line = text.count("\n", 0, command.start("name")) + 1
        known = help_of(command["name"])
        if known is None:
            yield line, f"the runner has no command {command['name']}"
            continue
        for option in OPTION.findall(command["rest"]):
            if not re.search(re.escape(option) + r"(?![\w-])", known):
                yield line, f"{command['name']} has no option {option}"


def link_mistakes(text, folder):
    """The links of a page in `folder` that lead nowhere."""
    without_code = re.sub(r"^```.*?^```$|`[^`\n]*`", lambda code: "\n" * code[0].count("\n"), text,
                          flags=re.MULTILINE | re.DOTALL)
    for link in LINK.finditer(without_code):
        if not link["target"].startswith(("http:", "https:")) and not (folder / link["target"]).exists():
            yield without_code.count("\n", 0, link.start()) + 1, f"it links to {link['target']}, which is not there"


def runner_help(runner):
    known = {}

    def help_of(name):
        if name not in known:
            run = subprocess.run([runner, name, "--help"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                 check=False)
            known[name] = run.stdout if run.returncode == 0 else None
        return known[name]

    return help_of


def pages_of(project):
    return [project / "README.md", *sorted((project / "docs").glob("*.md"))]


def renew(project):
    for page in pages_of(project):
        text = page.read_text()
        now = renewed(text, project / "docs" / "samples")
        if now != text:
            page.write_text(now)


def check(project, runner):
    help_of = runner_help(runner)
    mistakes = 0
    for page in pages_of(project):
        text = page.read_text()
        found = [*fence_mistakes(text, project / "docs" / "samples"), *excerpt_mistakes(text, project),
                 *command_mistakes(text, help_of), *link_mistakes(text, page.parent)]
        for line, mistake in sorted(found):
            print(f"{page}:{line}: {mistake}")
        mistakes += len(found)
    return 1 if mistakes else 0


if __name__ == "__main__":
    sys.exit(check(Path(sys.argv[1]), sys.argv[2]) if len(sys.argv) > 2 else renew(Path(sys.argv[1])))
