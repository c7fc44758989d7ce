// A global that holds an error object rather than a function.
var less = new Error("not a comparison");
