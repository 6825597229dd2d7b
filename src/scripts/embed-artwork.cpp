// "Embed Artwork.scpt" TRACK TITLE: changes nothing. Where the pictures of a track are kept apart from it, this is
// the place to put them into the file; here the players read the tags of the very file that is copied.

int main() {
  return 0;
}
