// What is fuzzed, one function for each kind of foreign bytes. They return normally for everything; a property that
// does not hold ends the program. Called by the fuzz programs and, with the corpus, by the unit tests.
#pragma once

#include <QByteArrayView>

namespace sonorel::fuzz {

void listContent(QByteArrayView bytes);        // the content of one list of a favourites file
void favouritesFile(QByteArrayView bytes);     // a whole favourites file, as every product would read it
void favouritesContents(QByteArrayView bytes); // the contents of a file's lists, packed into a file first
void photoFile(QByteArrayView bytes);          // a whole photo file, extended by albums
void photoContents(QByteArrayView bytes);      // the same of contents that are packed into a file first
void limitsFile(QByteArrayView bytes);         // the limits file
void propertyList(QByteArrayView bytes);       // any property list, XML or binary
void mainDictionary(QByteArrayView bytes);     // a property list read as a main dictionary

} // namespace sonorel::fuzz
