"""Links between documents."""

import re


def broken(folder):
    """Links of the documents below a folder (a pathlib.Path) to files that are not there."""
    missing = []
    for document in sorted(folder.rglob("*.md")):
        for link in re.findall(r"\]\(([^)#]+)[^)]*\)", document.read_text(encoding="utf-8")):
            if ":" not in link and not (document.parent / link).exists():
                missing.append(f"{document.relative_to(folder)}: {link}")
    return missing
