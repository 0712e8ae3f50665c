import { assemble } from "hxzirpa";

await assemble(" CLRA\n", { listings: true });
