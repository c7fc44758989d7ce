// Comparison for SortByRoleByScriptFunction: true when a belongs before b.
// Case-insensitive, and runs of digits compare by value ("item2" < "item10").
function naturalLess(a, b) {
    var x = String(a).toLowerCase();
    var y = String(b).toLowerCase();
    var chunk = /(\d+|\D+)/g;
    var xs = x.match(chunk) || [];
    var ys = y.match(chunk) || [];
    for (var i = 0; i < Math.min(xs.length, ys.length); ++i) {
        if (xs[i] === ys[i])
            continue;
        var xn = /^\d/.test(xs[i]);
        var yn = /^\d/.test(ys[i]);
        if (xn && yn && Number(xs[i]) !== Number(ys[i]))
            return Number(xs[i]) < Number(ys[i]);
        return xs[i] < ys[i];
    }
    if (xs.length !== ys.length)
        return xs.length < ys.length;
    return String(a) < String(b);
}
