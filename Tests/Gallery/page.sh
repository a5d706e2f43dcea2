#!/usr/bin/env bash
# page.sh FOLDER PICTURE: one page, on standard output, with all that the galleries wrote to FOLDER, the PICTURE of the
# whole above it. SUBJECT-STATE-LOOK-SCALEx.png are grouped by subject and state, light beside dark, each at one and at
# two pixels for a point; they stand in the page themselves, which needs no other file and no network.
set -euo pipefail
folder=$1 whole=$2

declare -A file=() width=() caption=() states=()
subjects=()

# As they were drawn: a gallery begins with what is usual.
list() {
    find "$folder" -name '*.png' -printf '%T@ %p\0' | sort -zn | cut -zd ' ' -f 2- |
        xargs -0 identify -quiet -format '%i|%w|%[Description]\n'
}

read_pictures() {
    local path pixels text subject state look scale
    while IFS='|' read -r path pixels text; do
        [[ ${path##*/} =~ ^([a-z0-9]+)(-(.+))?-(light|dark)-([0-9.]+)x\.png$ ]] || {
            echo "page.sh: $path is not called SUBJECT-STATE-LOOK-SCALEx.png" >&2
            return 1
        }
        subject=${BASH_REMATCH[1]} state=${BASH_REMATCH[3]:-all} look=${BASH_REMATCH[4]} scale=${BASH_REMATCH[5]}
        [[ $scale == [12] ]] || continue
        [ -n "${states[$subject]+set}" ] || subjects+=("$subject")
        [[ " ${states[$subject]-} " == *" $state "* ]] || states[$subject]+=" $state"
        text=${text:-${state//-/ }}
        caption[$subject $state]=${text^}
        file[$subject $state $look $scale]=$path
        width[$subject $state $look $scale]=$((pixels / scale))
    done
}

escaped() {
    sed 's/&/\&amp;/g; s/</\&lt;/g; s/"/\&quot;/g' <<<"$1"
}

# picture FILE WIDTH TEXT: the file itself, so wide, with what it shows for those who do not see it.
picture() {
    printf '<img width="%s" alt="%s" src="data:image/png;base64,' "$2" "$(escaped "$3")"
    base64 -w 0 "$1"
    echo '">'
}

figures() {
    local subject=$1 state=$2 look scale picture
    for scale in 1 2; do
        echo '<div class="pair">'
        for look in light dark; do
            picture="$subject $state $look $scale"
            [ -n "${file[$picture]-}" ] || continue
            echo '<figure>'
            picture "${file[$picture]}" "${width[$picture]}" \
                "${subject^}. ${caption[$subject $state]}. ${look^}, at ${scale}x."
            echo "<figcaption>${look^}, ${scale}x</figcaption></figure>"
        done
        echo '</div>'
    done
}

head_of_page() {
    cat <<'PAGE'
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>velisk in all its states</title>
<style>
:root { color-scheme: light dark; --ground: #f4f3f0; --ink: #22221f; --soft: #6d6c66; --line: #d9d7d0; }
@media (prefers-color-scheme: dark) { :root { --ground: #161614; --ink: #e9e8e3; --soft: #98968e; --line: #34342f; } }
body { margin: 0; background: var(--ground); color: var(--ink); font: 15px/1.5 system-ui, sans-serif; }
main { max-width: 1760px; margin: 0 auto; padding: 48px 32px 96px; }
h1 { margin: 0; font-size: 30px; letter-spacing: -.02em; }
h2 { margin: 72px 0 0; padding-top: 16px; border-top: 1px solid var(--line); font-size: 22px; }
h3 { margin: 32px 0 10px; font-size: 15px; font-weight: 600; }
p, nav, figcaption { color: var(--soft); }
p { max-width: 46em; margin: 8px 0 16px; }
nav a { margin-right: 18px; color: inherit; }
.row, .pair { display: flex; gap: 20px; align-items: flex-start; }
.row { flex-wrap: wrap; }
.pair, figure { margin: 0; min-width: 0; }
img { display: block; max-width: 100%; height: auto; border-radius: 6px; box-shadow: 0 0 0 1px var(--line); }
figcaption { margin-top: 5px; font-size: 12px; }
.whole { margin-top: 28px; }
</style>
</head>
PAGE
}

read_pictures < <(list)
head_of_page
cat <<'PAGE'
<body>
<main>
<h1>velisk in all its states</h1>
<p>Made by <code>make screenshots</code>, from made-up figures. Each state in light and dark, with one and with two
pixels for a point. All have the size that they have on a screen, so that a dense screen shows what the second pixel
brings.</p>
PAGE
echo '<nav>'
for subject in "${subjects[@]}"; do echo "<a href=\"#$subject\">${subject^}</a>"; done
echo '</nav><div class="whole">'
picture "$whole" "$(($(identify -format %w "$whole") / 2))" \
    "The badge in a panel and the popover below it, once light with Ethereum's figure, once dark with Arbitrum's."
echo '</div>'
for subject in "${subjects[@]}"; do
    echo "<section id=\"$subject\"><h2>${subject^}</h2>"
    for state in ${states[$subject]}; do
        echo "<h3>$(escaped "${caption[$subject $state]}")</h3><div class=\"row\">"
        figures "$subject" "$state"
        echo '</div>'
    done
    echo '</section>'
done
echo '</main></body></html>'
