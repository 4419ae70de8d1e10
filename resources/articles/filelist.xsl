<?xml version="1.0" encoding="UTF-8"?>
<!-- Prints the file names of all ready-made articles, separated by semicolons (a CMake list). -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="filenames.xsl"/>
  <xsl:output method="text"/>

  <xsl:template match="/">
    <xsl:value-of select="$fallback-file"/>
    <xsl:for-each select="journals/journal/category">
      <xsl:text>;</xsl:text>
      <xsl:call-template name="article-file"/>
      <xsl:if test="@scattering-outline">
        <xsl:text>;</xsl:text>
        <xsl:call-template name="article-file">
          <xsl:with-param name="scattering" select="true()"/>
        </xsl:call-template>
      </xsl:if>
    </xsl:for-each>
  </xsl:template>

</xsl:stylesheet>
