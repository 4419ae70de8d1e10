<?xml version="1.0" encoding="UTF-8"?>
<!-- File names of the ready-made articles, as the program looks for them. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">

  <!-- What is opened for a journal and category without an article of their own; named after all
       journal codes. -->
  <xsl:variable name="fallback-file" select="'abcdfjsm.html'"/>

  <!-- <code>_<category in lower case without white space>[_sas].html -->
  <xsl:template name="article-file">
    <xsl:param name="category" select="."/>
    <xsl:param name="scattering" select="false()"/>
    <xsl:value-of select="concat($category/../@code, '_',
        translate($category/@name, 'ABCDEFGHIJKLMNOPQRSTUVWXYZ ', 'abcdefghijklmnopqrstuvwxyz'))"/>
    <xsl:if test="$scattering">_sas</xsl:if>
    <xsl:text>.html</xsl:text>
  </xsl:template>

  <xsl:template name="with-capital">
    <xsl:param name="text"/>
    <xsl:value-of select="concat(translate(substring($text, 1, 1),
        'abcdefghijklmnopqrstuvwxyz', 'ABCDEFGHIJKLMNOPQRSTUVWXYZ'), substring($text, 2))"/>
  </xsl:template>

</xsl:stylesheet>
