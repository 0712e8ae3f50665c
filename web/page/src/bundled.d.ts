declare module "examples" {
  export const examples: Record<string, string>;
}
