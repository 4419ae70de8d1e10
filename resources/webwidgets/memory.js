// What the page remembers from one start to the next. The program keeps its cookies; where it
// cannot, nothing is remembered and nothing is lost.
Vexa.memory = (function () {
    'use strict';

    var tenYears = 315360000; // seconds

    function get(name) {
        var found = new RegExp('(?:^|; )' + name + '=([^;]*)').exec(document.cookie);
        try {
            return found ? JSON.parse(decodeURIComponent(found[1])) : null;
        } catch (damaged) {
            return null;
        }
    }

    function set(name, value) {
        document.cookie = name + '=' + encodeURIComponent(JSON.stringify(value)) +
            '; max-age=' + tenYears;
    }

    return {get: get, set: set};
}());
