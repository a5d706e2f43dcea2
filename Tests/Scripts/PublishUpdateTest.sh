#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

publish="$tree/scripts/publish-update"

# make_keys: a pair of keys in `key` and $public, and the program to publish, built with that key, in `payload`.
make_keys() {
    public=$("$publish" make-key key)
    { cat "$NOTE_PROGRAM" && printf '%s' "$public" | iconv -t UTF-16LE; } >payload
}

# add [OPTION...]: publishes `payload` in `appcast.xml`.
add() {
    run "$publish" add --key key --public-key "$public" --url https://velisk.example/payload "$@" appcast.xml payload
}

read_feed() {
    run "$FEED_READER" appcast.xml "$public" payload
}

aPublishedUpdateIsReadAndVerified() {
    make_keys
    add
    expect_status 0
    expect_output ''
    read_feed
    expect_output "version: 1.2.3b4
product: org.example.Program
architecture: riscv64
os: linux
channel: 
minimum: 
url: https://velisk.example/payload
link: 
notes link: 
length: $(stat -c %s payload)
critical: 0
informational: 0
phased: 0
dated: 1
signature: verified
notes: "
    printf x >>payload
    read_feed
    expect_output_has "signature: The update's signature is wrong"
}

everyOptionReachesTheFeed() {
    make_keys
    printf 'Fast & <b>bold</b>\r\n  "two" ]]> lines \303\244\n' >notes
    add --critical --channel beta --phased 3600 --minimum-system-version 5.10 --notes notes \
        --notes-link 'https://velisk.example/?a=1&b=2'
    expect_status 0
    read_feed
    expect_output_has 'critical: 1'
    expect_output_has 'channel: beta'
    expect_output_has 'phased: 3600'
    expect_output_has 'minimum: 5.10'
    expect_output_has 'notes link: https://velisk.example/?a=1&b=2'
    expect_output_has $'notes: Fast & <b>bold</b>\n  "two" ]]> lines ä'
}

whatOnlyInformsNeedsNoKey() {
    make_keys
    run "$publish" add --informational https://velisk.example/new appcast.xml payload
    expect_status 0
    read_feed
    expect_output_has 'informational: 1'
    expect_output_has 'link: https://velisk.example/new'
}

aFurtherVersionIsAddedBeforeTheOthers() {
    make_keys
    add
    sed 's/1\.2\.3b4/1.2.3b5/' payload >next && mv next payload
    add --critical
    expect_status 0
    read_feed
    [ "$(grep -c '^version: ' <<<"$output")" = 2 ] || fail "there are not two"
    [[ $output == "version: 1.2.3b5"* ]] || fail "the newer one is not first"
    expect_output_has 'signature: verified'
    [ "$(stat -c %a appcast.xml)" = 644 ] || fail "the feed cannot be read by its server"
    [ "$(ls -A)" = $'appcast.xml\nkey\npayload' ] || fail "something was left behind: $(ls -A)"
}

theSameVersionIsNotAddedTwice() {
    make_keys
    add
    cp appcast.xml before
    add --critical
    expect_status 1
    expect_output 'publish-update: appcast.xml has version 1.2.3b4 for riscv64 already'
    cmp appcast.xml before
}

theSameVersionForAnotherArchitectureIs() {
    make_keys
    add
    sed 's/riscv64/aarch64/' payload >other && mv other payload
    add
    expect_status 0
    read_feed
    [ "$(grep -c '^version: ' <<<"$output")" = 2 ] || fail "there are not two"
}

aKeyIsItsOwnersAloneAndNeverOverwritten() {
    make_keys
    [ "$(stat -c %a key)" = 600 ] || fail "others can read the key"
    cp key before
    run "$publish" make-key key
    expect_status 1
    cmp key before
    ln -s nowhere link
    run "$publish" make-key link
    expect_status 1
    [ ! -e nowhere ] || fail "the link was followed"
    run "$publish" public-key key
    expect_output "$public"
    chmod 640 key
    run "$publish" public-key key
    expect_status 1
    expect_output_has 'others can read key'
}

anotherKeyThanTheBuildsIsRefused() {
    make_keys
    "$publish" make-key other
    run "$publish" sign --key other --public-key "$public" payload
    expect_status 1
    expect_output "publish-update: the key is not the private one of $public"
    run "$publish" add --key other --public-key "$public" --url https://velisk.example/payload appcast.xml payload
    expect_status 1
    [ ! -e appcast.xml ] || fail "a feed was made"
    [ "$(ls -A)" = $'key\nother\npayload' ] || fail "something was left behind"
}

whatIsNoKeyIsRefused() {
    make_keys
    openssl genpkey -algorithm X25519 -out other 2>/dev/null
    run "$publish" sign --key other --public-key "$public" payload
    expect_status 1
    expect_output 'publish-update: the key is no Ed25519 private key'
    run "$publish" sign --key missing --public-key "$public" payload
    expect_status 1
}

theKeyMayComeFromTheStandardInputAndIsShownToNobody() {
    make_keys
    write_program bin/openssl <<'PROGRAM'
#!/bin/bash
{
    echo "$@"
    env
} >>seen
exec /usr/bin/openssl "$@"
PROGRAM
    signature=$(PATH=$PWD/bin:$PATH "$publish" sign --key - --public-key "$public" payload <key)
    [ ${#signature} = 88 ] || fail "no signature: $signature"
    [ -s seen ] || fail "openssl was not seen"
    ! grep -qF "$(sed -n 2p key)" seen || fail "the key was shown"
    run "$publish" sign --key key --public-key "$public" payload
    expect_output "$signature"
}

aPayloadWithoutItsKeyIsWarnedOf() {
    make_keys
    cp "$NOTE_PROGRAM" payload
    add
    expect_status 0
    expect_output_has 'was built without this public key'
}

whatIsNoPayloadIsRefused() {
    make_keys
    echo 'exit 0' >payload
    add
    expect_status 1
    expect_output 'publish-update: payload is no executable with a note of its product and version'
    cp /bin/true payload
    add
    expect_status 1
    [ ! -e appcast.xml ] || fail "a feed was made"
}

aFeedThatIsNotOursIsLeftAlone() {
    make_keys
    echo '<rss><channel/></rss>' >appcast.xml
    add
    expect_status 1
    expect_output_has 'appcast.xml was not made by this script'
    [ "$(cat appcast.xml)" = '<rss><channel/></rss>' ] || fail "it was changed"
}

notesThatCannotBeShownAreRefused() {
    make_keys
    printf 'caf\351\n' >notes
    add --notes notes
    expect_status 1
    expect_output_has 'are not UTF-8'
    printf 'red \033[31m\n' >notes
    add --notes notes
    expect_status 1
    expect_output_has 'control characters'
    local character
    for character in '\xef\xbf\xbe' '\xef\xbf\xbf' '\x1f' '\x00'; do
        printf 'new%bs\n' "$character" >notes
        add --notes notes
        expect_status 1
        expect_output_has 'others that XML does not allow'
    done
    for character in '\xed\xa0\x80' '\xf4\x90\x80\x80' '\xc0\x80'; do # Half a pair, beyond Unicode, too long a way.
        printf 'new%bs\n' "$character" >notes
        add --notes notes
        expect_status 1
        expect_output_has 'are not UTF-8'
    done
    [ ! -e appcast.xml ] || fail "a feed was made"
    printf 'new\xef\xbf\xbds\n' >notes
    add --notes notes
    expect_status 0
    read_feed
    expect_output_has $'notes: new\xef\xbf\xbds'
}

addressesThatCannotBeWrittenAreRefused() {
    make_keys
    local part
    for part in $'\xef\xbf\xbe' $'\x01' $'\x7f\xe4' $'\xed\xa0\x80'; do
        add --url "https://velisk.example/pay${part}load"
        expect_status 2
        expect_output_has 'has characters that XML does not allow'
        add --notes-link "https://velisk.example/$part"
        expect_status 2
        run "$publish" add --informational "https://velisk.example/$part" appcast.xml payload
        expect_status 2
    done
    add --notes-link "https://velisk.example/$(printf '%02000d' 0)"
    expect_status 2
    expect_output_has 'is longer than any address'
    [ ! -e appcast.xml ] || fail "a feed was made"
}

aVersionThatWouldNotBeReadIsRefused() {
    make_keys
    write_program bin/readelf <<'PROGRAM'
#!/bin/bash
# A note of any version.
bytes=$(printf 'org.example.Program\0%s\0riscv64\0' "$VERSION" | od -An -v -tx1 | tr -d '\n')
printf 'Displaying notes found in: .note.org.velisk.Torvane\n'
printf '  org.velisk.Torvane 0x00000020 NT_VERSION (version) description data: %s\n' "$bytes"
PROGRAM
    export VERSION
    VERSION=1.$(printf '%063d' 0)
    PATH=$PWD/bin:$PATH add
    expect_status 1
    expect_output_has 'is longer than what is read, 64 characters'
    [ ! -e appcast.xml ] || fail "a feed was made"
    VERSION=1.$(printf '%062d' 0)
    PATH=$PWD/bin:$PATH add
    expect_status 0
    read_feed
    expect_output_has "version: $VERSION"
}

aFeedOfAsManyItemsAsAreReadTakesNoMore() {
    make_keys
    add
    sed -n '/<item>/,/<\/item>/p' appcast.xml >item
    for _ in $(seq 998); do cat item; done >items
    sed -i -e '/<\/item>/r items' appcast.xml
    sed 's/1\.2\.3b4/1.2.3b5/' payload >next && mv next payload
    add
    expect_status 0
    read_feed
    [ "$(grep -c '^version: ' <<<"$output")" = 1000 ] || fail "a feed of a thousand is not read"
    cp appcast.xml before
    sed 's/1\.2\.3b5/1.2.3b6/' payload >next && mv next payload
    add
    expect_status 1
    expect_output_has 'appcast.xml has 1000 items'
    cmp appcast.xml before
}

aFeedThatCannotBeWrittenStaysAsItIs() {
    make_keys
    add
    cp appcast.xml before
    sed 's/1\.2\.3b4/1.2.3b5/' payload >next && mv next payload
    write_program bin/sync <<<$'#!/bin/sh\nexit 1'
    PATH=$PWD/bin:$PATH add
    expect_status 1
    cmp appcast.xml before
    [ "$(ls -A)" = $'appcast.xml\nbefore\nbin\nkey\npayload' ] || fail "something was left behind: $(ls -A)"
}

wrongUseIsExplained() {
    make_keys
    add --url http://velisk.example/payload
    expect_status 2
    expect_output_has '--url takes an https address'
    add --url https://velisk.example@evil.example/payload
    expect_status 2
    expect_output_has '--url takes an https address'
    add --phased soon
    expect_status 2
    add --colour blue
    expect_status 2
    expect_output_has 'there is no option --colour'
    add --channel 'two words'
    expect_status 2
    run "$publish" sign --public-key "$public" payload
    expect_status 2
    run "$publish"
    expect_status 2
    run "$publish" --help
    expect_status 0
    expect_output_has 'Use: scripts/publish-update'
}

run_checks
