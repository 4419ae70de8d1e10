// The text of files of this computer, of any size, without the page standing still for it.
Vexa.fileText = (function () {
    'use strict';

    // Behind the last line end before a place; the place itself in a file without lines.
    function endOfLine(text, place) {
        return Math.max(text.lastIndexOf('\n', place), text.lastIndexOf('\r', place)) + 1 || place;
    }

    // Reads the beginning of a file, at most so many characters. Calls onText(text, complete) or
    // onFailure(), once and later. The result is a function that calls it off.
    function read(url, most, onText, onFailure) {
        var request = new XMLHttpRequest();
        var isOver = false; // nothing more is to be heard of the request

        // From a timer: the engine is in the middle of handing over the file.
        function later(action) {
            isOver = true;
            setTimeout(action, 0);
        }

        function cancel() {
            isOver = true;
            onText = onFailure = function () {};
            request.abort();
        }

        request.onreadystatechange = function () {
            var text = !isOver && request.readyState === 3 ? request.responseText : '';
            if (text.length > most) {
                // What would be cut in the middle of a line is left out.
                later(function () {
                    onText(text.substring(0, endOfLine(text, most)), false);
                });
                request.abort();
            }
        };
        request.onload = function () {
            var text = request.responseText;
            if (!isOver) {
                later(function () {
                    onText(text, true);
                });
            }
        };
        request.onerror = function () {
            if (!isOver) {
                later(function () {
                    onFailure();
                });
            }
        };
        // The question mark keeps the engine from answering with what the file held before.
        request.open('GET', url + '?' + Date.now(), true);
        request.overrideMimeType('text/plain; charset=utf-8');
        request.send();
        return cancel;
    }

    function urlOf(path) {
        return 'file://' + path.split('/').map(encodeURIComponent).join('/');
    }

    return {read: read, urlOf: urlOf};
}());
