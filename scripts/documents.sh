#!/usr/bin/env bash
# The documents of a release as HTML: documents.sh FOLDER. Needs markdown_py of python3-markdown.
set -eu
cd "$(dirname "$0")/.."
mkdir -p "$1"

# html NAME: what stands on standard input becomes that page.
html() {
  {
    echo '<!DOCTYPE html><html lang="en"><meta charset="utf-8"><title>Veltra device tool</title><style>'
    echo 'body { max-width: 60em; margin: 2em auto; padding: 0 1em; font-family: sans-serif; line-height: 1.4 }'
    echo 'table { border-collapse: collapse } td, th { border: 1px solid #bbb; padding: .2em .6em; text-align: left; vertical-align: top }'
    echo 'pre { background: #eee; padding: .5em; overflow: auto }</style>'
    # A link to a page that is not among these becomes plain text.
    markdown_py -x tables -x toc -x sane_lists |
      sed -E "s/href=\"(${names// /|})\.md/href=\"\1.html/g; s|<a href=\"[a-z_]+\.md[^>]*>([^<]*)</a>|\1|g"
  } >"$folder/$1.html"
}

folder=$1
names="deployment programs macros_and_tables window_interface controller_protocol windows_checklist"
for name in $names; do
  html $name <"docs/$name.md"
done
html changes <CHANGELOG.md
