# Sourced by the roads on which something fails: a playlist of three tracks of which the second is big, on a product
# that holds an older playlist, and what must hold whatever has failed.
. "$(dirname "${BASH_SOURCE[0]}")/product.sh"

tracks=() # what is dropped
# On this one a list that is dropped again replaces the one of its name.
start_product() { "$standin" start "$root/product" --name "Auracore 5" >/dev/null; }
small_songs() {
  make_song "$root/music/Artist/Old/old.mp3" Old Artist Old
  make_song "$root/music/Artist/Album/1.mp3" First Artist Album
  make_song "$root/music/Artist/Album/3.mp3" Third Artist Album 7
}
big_song() { # TIMES the small one
  make_song "$root/big.mp3" Second Artist Album
  for ((i = 0; i < $1; i++)); do cat "$root/big.mp3"; done >"$root/music/Artist/Album/2.mp3"
}
make_tracks() { # TIMES
  small_songs
  big_song "$1"
  tracks=("$root/music/Artist/Album"/{1,2,3}.mp3)
  sources=$(cd "$root/music" && sha256sum Artist/*/*.mp3)
}
drop_tracks() { "$bin/trackchute" --playlist Party "${tracks[@]}" || fail "the drop was refused"; }
there() { echo "$share/Music/Mac/Artist/Album/Artist-Album-$1.mp3"; } # TITLE

# The product with an older playlist, and what an undisturbed drop makes of it.
learn_undisturbed() {
  "$bin/trackchute" --playlist Old "$root/music/Artist/Old/old.mp3" || fail "the older playlist was refused"
  idle_within 30
  cp -a "$share/." "$root/base"
  older=$(product_state)
  [[ $older == *'"name": "Old"'* ]] || fail "no older playlist: $older"
  drop_tracks
  idle_within 60
  undisturbed=$(product_state)
  [ "$(wc -l <<<"$undisturbed")" -eq "$(($(wc -l <<<"$older") + 4))" ] || fail "undisturbed: $undisturbed"
  [[ $undisturbed == *'"name": "Party"'* ]] || fail "undisturbed: $undisturbed"
  [ -s "$(there Second)" ] || fail "undisturbed: $undisturbed"
}
# As it was before the drop; the client stays connected.
start_over() {
  rm -rf "$share"/{Music,System}
  cp -a "$root/base"/{Music,System} "$share/"
  sleep 1.1 # what the kernel remembers of the share is forgotten
  [ "$(product_state)" = "$older" ] || fail "not as it was before: $(product_state)"
}
scenario() {
  now
  echo "--- $* ($((REPLY / 1000 % 10000)))"
}

# In the middle of the big one: the server holds a part of it.
in_the_big_copy() {
  local file end=$((SECONDS + 30))
  file=$(there Second)
  until [ -s "$file" ]; do [ $SECONDS -lt $end ] || fail "nothing is copied: $(property MessageLog)"; done
}
until_all_stand_there() {
  local file end=$((SECONDS + 30))
  file=$(there Third)
  until [ -s "$file" ] && cmp -s "$file" "${tracks[2]}"; do
    [ $SECONDS -lt $end ] || fail "the last track did not come: $(property MessageLog)"
    sleep 0.02
  done
}
is_complete() { cmp -s "$1" "$(there "$2")"; } # FILE TITLE
is_partial() { [ -e "$(there Second)" ] && ! is_complete "${tracks[1]}" Second; }

# Nothing was lost, and nothing is called done that was not.
nothing_is_lost() {
  [ "$(cd "$root/music" && sha256sum Artist/*/*.mp3)" = "$sources" ] || fail "a source has changed"
  local state
  state=$(product_state)
  while IFS= read -r line; do
    grep -qxF -- "$line" <<<"$state" || fail "lost: $line; there is: $state"
  done <<<"$older"
}
only_complete_ones_are_listed() {
  local listed title i=0
  listed=$(lists "$share/System/NetMusicFavorites.orv" | grep '^Party ' || true)
  for title in First Second Third; do
    if [[ $listed == *"-$title.mp3"* ]]; then
      is_complete "${tracks[$i]}" $title || fail "$title is listed and not there: $listed"
    fi
    i=$((i + 1))
  done
}
# Every track that is not there is named in the log.
all_missing_are_told() {
  local log title i=0
  log=$(property MessageLog)
  for title in First Second Third; do
    is_complete "${tracks[$i]}" $title || [[ $log == *"$(basename "${tracks[$i]}")"* ]] ||
      fail "$title is not there, and nobody says so: $log"
    i=$((i + 1))
  done
}
nothing_below_the_point() {
  ! is_mounted || fail "still mounted"
  [ -z "$(find "$(dirname "$point")" -mindepth 1 ! -path "$point")" ] || fail "beside: $(ls -laR "$(dirname "$point")")"
  [ ! -e "$point" ] || [ -z "$(find "$point" -mindepth 1)" ] || fail "below the point: $(ls -laR "$point")"
}
same_drop_gives_the_undisturbed_tree() {
  only_complete_ones_are_listed
  drop_tracks
  idle_within 60
  [ "$(product_state)" = "$undisturbed" ] ||
    fail "not what an undisturbed drop gives: $(diff <(echo "$undisturbed") <(product_state)) $(property MessageLog)"
  nothing_temporary_is_left
}
# With whatever state the server is in.
end_and_leave_nothing() {
  start_stopwatch
  end_client
  within 15000 "the quit"
  ! is_mounted || fail "still mounted after the end"
  local end=$((SECONDS + 5))
  while [ -n "$(mount_programs)" ]; do
    [ $SECONDS -lt $end ] || fail "a mount program has outlived the client"
    sleep 0.1
  done
  nothing_below_the_point
}
