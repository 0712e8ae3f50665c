import zirpa = require("hxzirpa");

zirpa.assemble(new ArrayBuffer(1)).then((result) => console.log(result.symbols[0]?.uses[0]?.kind));
