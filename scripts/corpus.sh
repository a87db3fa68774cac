# Sourced: the fuzzers' inputs in git. Needs common.sh.
# shellcheck shell=bash
#
#   tests/fuzz/corpus/NAME/         seeds written by people, one file each, named after what they show
#   tests/fuzz/corpus/NAME.base64   inputs that searches found, one per line, sorted
#   tests/fuzz/regressions/NAME/    inputs that once failed, named after the fault; not part of the corpus

# unpack_corpus NAME DIRECTORY: makes the directory anew with the seeds and the found inputs. The input of line 7 is
# found-0007.
unpack_corpus() {
    local corpus=tests/fuzz/corpus/$1 directory=$2 line number=0
    rm -rf "$directory" && mkdir -p "$directory" || return
    if [[ -d $corpus ]]; then cp "$corpus"/* "$directory" || return; fi
    [[ -e $corpus.base64 ]] || return 0
    while read -r line; do
        number=$((number + 1))
        base64 --decode <<<"$line" >"$directory/$(printf 'found-%04d' "$number")" || return
    done <"$corpus.base64"
}

# pack_corpus NAME DIRECTORY: makes NAME.base64 anew from the directory's files, except the seeds.
pack_corpus() {
    local corpus=tests/fuzz/corpus/$1 directory=$2 file
    for file in "$directory"/*; do
        [[ -s $file && ! -e $corpus/${file##*/} ]] || continue
        base64 --wrap=0 "$file" && printf '\n' || return
    done | LC_ALL=C sort --unique >"$corpus.base64.part" || return
    mv "$corpus.base64.part" "$corpus.base64"
}
